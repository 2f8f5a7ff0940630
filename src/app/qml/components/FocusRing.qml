import QtQuick
import Thalvorn

// The visible focus around a control that was reached by keyboard.
Rectangle {
    property bool shown: parent ? parent.visualFocus === true : false
    property real offset: 3

    anchors.fill: parent
    anchors.margins: -offset
    radius: Theme.radiusControl + offset
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
    visible: shown
}
