import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A small choice that is on or off, with an optional status dot, icon and count.
T.Button {
    id: root

    property string iconName
    property string tone
    property int count: -1
    property string trailingIcon
    property string tip

    implicitHeight: Theme.chipHeight
    implicitWidth: Math.ceil(row.implicitWidth) + leftPadding + rightPadding
    leftPadding: 11
    rightPadding: 11
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.5
    Accessible.role: checkable ? Accessible.CheckBox : Accessible.Button
    Accessible.name: count >= 0 ? text + " " + count : text
    Accessible.checkable: checkable
    Accessible.checked: checked
    Keys.onReturnPressed: click()
    Keys.onEnterPressed: click()

    readonly property color inkNow: checked ? Theme.accent : Theme.ink

    contentItem: Item {
        implicitWidth: row.implicitWidth
        Row {
            id: row
            anchors.centerIn: parent
            spacing: 7

            Rectangle {
                visible: root.tone.length > 0
                width: 9
                height: 9
                radius: 4.5
                color: Theme.statusInk(root.tone)
                anchors.verticalCenter: parent.verticalCenter
            }
            Icon {
                visible: root.iconName.length > 0
                name: root.iconName
                size: Theme.iconSmall
                color: root.inkNow
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                text: root.count >= 0 ? root.text + " " + Format.number(root.count, 0) : root.text
                font: Theme.fonts.smallMedium
                color: root.inkNow
                textFormat: Text.PlainText
                anchors.verticalCenter: parent.verticalCenter
            }
            Icon {
                visible: root.trailingIcon.length > 0
                name: root.trailingIcon
                size: 13
                color: root.inkNow
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }

    background: Rectangle {
        radius: Theme.radiusControl
        color: root.checked ? Theme.accentBg : root.down ? Theme.pressed : root.hovered ? Theme.hover : Theme.card
        border.width: Theme.hairline
        border.color: root.checked ? (Theme.dark ? Theme.accentBg : Theme.barFaint) : Theme.controlLine
    }

    FocusRing { offset: 2 }
    HoverTip { text: root.tip; shown: root.hovered }
}
