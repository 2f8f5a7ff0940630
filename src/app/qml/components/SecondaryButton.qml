import QtQuick
import Thalvorn

// Any other action with a word.
BaseButton {
    fill: Theme.card
    outline: Theme.controlLine
}
