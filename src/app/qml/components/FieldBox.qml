import QtQuick
import Thalvorn

// The bordered box behind an editable control.
Item {
    property bool focused: false
    property bool wrong: false
    property bool quiet: false
    property bool readOnly: false
    property bool hovered: false
    property alias radius: box.radius

    Rectangle {
        anchors.fill: parent
        anchors.margins: -3
        radius: box.radius + 3
        visible: parent.focused
        color: parent.wrong ? Theme.overdueBg : Theme.accentBg
    }
    Rectangle {
        id: box
        anchors.fill: parent
        radius: Theme.radiusControl
        color: parent.readOnly || parent.quiet ? Theme.bg : Theme.card
        border.width: Theme.hairline
        border.color: parent.wrong ? Theme.overdue : parent.focused ? Theme.accent : parent.hovered ? Theme.faint : Theme.controlLine
    }
}
