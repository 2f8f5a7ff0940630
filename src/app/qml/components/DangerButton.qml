import QtQuick
import Thalvorn

// The action that loses something, in the dialog that says what.
BaseButton {
    fill: Theme.dangerFill
    fillHover: Theme.dangerFillHover
    fillPressed: Theme.dangerFillHover
    ink: Theme.accentInk
}
