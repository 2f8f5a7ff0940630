import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A setting that is on or off, its words at the left and the switch at the right.
T.Switch {
    id: root

    property string hint

    implicitHeight: Math.max(36, words.implicitHeight + 10)
    implicitWidth: 280
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: hint
    Keys.onReturnPressed: { toggle(); toggled(); }
    Keys.onEnterPressed: { toggle(); toggled(); }

    indicator: Rectangle {
        x: root.mirrored ? 0 : root.width - width
        anchors.verticalCenter: parent.verticalCenter
        width: 38
        height: 22
        radius: 11
        color: root.checked ? Theme.accentFill : Theme.track
        border.width: root.checked ? 0 : Theme.hairline
        border.color: Theme.controlLine
        Rectangle {
            x: root.checked ? parent.width - width - 3 : 3
            anchors.verticalCenter: parent.verticalCenter
            width: 16
            height: 16
            radius: 8
            color: root.checked ? Theme.accentInk : Theme.faint
            Behavior on x { NumberAnimation { duration: Theme.fast } }
        }
        FocusRing { shown: root.visualFocus; radius: 14 }
    }

    contentItem: Item {
        Column {
            id: words
            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - 54
            spacing: 2
            AppText { text: root.text; width: parent.width }
            AppText { visible: root.hint.length > 0; text: root.hint; variant: "small"; wrapMode: Text.Wrap; width: parent.width }
        }
    }
}
