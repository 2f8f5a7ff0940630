import QtQuick
import QtQuick.Templates as T
import Thalvorn

// The menu bar, made from the table of commands.
T.MenuBar {
    id: root

    implicitHeight: Theme.menuBarHeight
    implicitWidth: contentItem.implicitWidth
    leftPadding: Theme.space1
    focusPolicy: Qt.NoFocus
    Accessible.role: Accessible.MenuBar

    delegate: T.MenuBarItem {
        id: entry
        implicitWidth: label.implicitWidth + 20
        implicitHeight: Theme.menuBarHeight
        readonly property bool lit: hovered || down || (menu !== null && menu.opened)
        hoverEnabled: true
        focusPolicy: Qt.NoFocus
        Accessible.role: Accessible.MenuItem
        Accessible.name: label.plain
        contentItem: Text {
            id: label
            readonly property string plain: entry.text.replace("&", "")
            text: plain
            font: Theme.fonts.small
            color: entry.lit ? Theme.sideStrong : Theme.sideInk
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            anchors.fill: parent
            anchors.margins: 3
            radius: 5
            color: entry.lit ? Theme.sideRaised : "transparent"
        }
    }
    contentItem: Row {
        Repeater { model: root.contentModel }
    }
    background: Rectangle {
        color: Theme.side
        Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: Theme.hairline; color: Theme.sideLine }
    }

    Instantiator {
        model: App.menus
        delegate: AppMenu {
            id: menu
            required property var modelData
            minimumWidth: 230
            title: modelData.title
            onFillRequested: entries.active = true
            Instantiator {
                id: entries
                active: false
                model: menu.modelData.items
                delegate: AppMenuItem {
                    required property var modelData
                    text: modelData.title
                    shortcutText: modelData.shortcut
                    separator: modelData.separator
                    enabled: modelData.enabled
                    checked: modelData.notification === "appearance" + App.appearance.charAt(0).toUpperCase() + App.appearance.slice(1)
                    onTriggered: App.post(modelData.notification)
                }
                onObjectAdded: (index, object) => menu.insertItem(index, object)
                onObjectRemoved: (index, object) => menu.removeItem(object)
            }
        }
        onObjectAdded: (index, object) => root.insertMenu(index, object)
        onObjectRemoved: (index, object) => root.removeMenu(object)
    }
}
