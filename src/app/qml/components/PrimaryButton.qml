import QtQuick
import Thalvorn

// The one main action of a page or sheet.
BaseButton {
    fill: Theme.accentFill
    fillHover: Theme.accentFillHover
    fillPressed: Theme.accentFillPressed
    ink: Theme.accentInk
}
