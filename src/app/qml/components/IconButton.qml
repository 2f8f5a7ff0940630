import QtQuick
import Thalvorn

// A square button with an icon only; `tip` is its word for the pointer and for screen readers.
BaseButton {
    property bool outlined: false

    implicitWidth: Theme.controlHeight
    leftPadding: 0
    rightPadding: 0
    ink: hovered ? Theme.ink : Theme.mute
    fill: outlined ? Theme.card : "transparent"
    outline: outlined ? Theme.controlLine : "transparent"
}
