import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A yes or no with its word beside it.
T.CheckBox {
    id: root

    property string hint

    implicitHeight: Math.max(28, contentItem.implicitHeight + 8)
    implicitWidth: Math.ceil(contentItem.implicitWidth) + leftPadding + rightPadding
    leftPadding: mirrored ? 0 : 28
    rightPadding: mirrored ? 28 : 0
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.description: hint
    Keys.onReturnPressed: { toggle(); toggled(); }
    Keys.onEnterPressed: { toggle(); toggled(); }

    indicator: Rectangle {
        x: root.mirrored ? root.width - width : 0
        y: 5
        width: 18
        height: 18
        radius: 5
        color: root.checkState !== Qt.Unchecked ? Theme.accentFill : Theme.card
        border.width: root.checkState !== Qt.Unchecked ? 0 : Theme.hairline
        border.color: root.hovered ? Theme.faint : Theme.controlLine
        Icon {
            anchors.centerIn: parent
            visible: root.checkState !== Qt.Unchecked
            name: root.checkState === Qt.PartiallyChecked ? "minus" : "check"
            size: 14
            color: Theme.accentInk
        }
        FocusRing { shown: root.visualFocus; offset: 2; radius: 7 }
    }

    contentItem: Item {
        implicitWidth: Math.ceil(Math.max(label.implicitWidth, hintLabel.text ? Math.min(240, hintLabel.implicitWidth) : 0))
        implicitHeight: words.implicitHeight
        Column {
            id: words
            width: parent.width
            spacing: 2
            topPadding: 4
            AppText { id: label; text: root.text; width: parent.width }
            AppText { id: hintLabel; visible: root.hint.length > 0; text: root.hint; variant: "small"; wrapMode: Text.Wrap; width: parent.width }
        }
    }
}
