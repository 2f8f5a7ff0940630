import QtQuick
import QtQuick.Templates as T
import Thalvorn

// One line of a menu; `shortcutText` is shown at its end.
T.MenuItem {
    id: root

    property string iconName
    property string shortcutText
    property bool danger: false
    property bool separator: false

    implicitWidth: Math.ceil(label.implicitWidth) + leftPadding + rightPadding + (iconName ? 28 : 0)
                   + (shortcutText ? keys.implicitWidth + 32 : 0) + (checkable || subMenu ? 28 : 0)
    implicitHeight: separator ? 9 : 34
    leftPadding: 10
    rightPadding: 10
    hoverEnabled: true
    enabled: !separator
    Accessible.role: separator ? Accessible.Separator : Accessible.MenuItem
    Accessible.name: label.plain

    readonly property color inkNow: !enabled ? Theme.faint : danger ? Theme.overdue : Theme.ink

    contentItem: Item {
        visible: !root.separator
        Icon {
            id: icon
            visible: root.iconName.length > 0
            name: root.iconName
            color: root.danger ? Theme.overdue : Theme.mute
            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
        }
        Text {
            id: label
            readonly property string plain: root.text.replace(/&(.)/g, "$1")
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            anchors.leftMargin: icon.visible ? 28 : 0
            width: parent.width - anchors.leftMargin - (keys.visible ? keys.implicitWidth + 16 : 0) - (mark.visible ? 24 : 0)
            text: plain
            font: Theme.fonts.body
            color: root.inkNow
            elide: Text.ElideRight
            textFormat: Text.PlainText
        }
        Text {
            id: keys
            visible: text.length > 0
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            text: root.shortcutText
            font: Theme.fonts.small
            color: Theme.mute
        }
        Icon {
            id: mark
            visible: root.checked || root.subMenu
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            name: root.subMenu ? "caret-right" : "check"
            size: Theme.iconSmall
            color: root.subMenu ? Theme.mute : Theme.accent
        }
    }

    indicator: null
    arrow: null

    background: Item {
        Rectangle {
            anchors.fill: parent
            visible: !root.separator && (root.highlighted || root.hovered) && root.enabled
            radius: Theme.radiusSmall
            color: Theme.hover
        }
        Rectangle {
            visible: root.separator
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            height: Theme.hairline
            color: Theme.line
        }
    }
}
