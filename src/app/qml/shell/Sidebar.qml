import QtQuick
import QtQuick.Layouts
import Thalvorn

// The way to every module; below 1,100 px only its icons.
Rectangle {
    id: root

    property bool narrow: false

    width: narrow ? Theme.sideWidthNarrow : Theme.sideWidth
    color: Theme.side
    Accessible.role: Accessible.Pane
    Accessible.name: "Modules"

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: root.narrow ? Theme.space2 : Theme.space3
        anchors.rightMargin: anchors.leftMargin
        spacing: 0

        RowLayout {
            spacing: Theme.space3
            Layout.topMargin: Theme.space3
            Layout.bottomMargin: Theme.space3
            Layout.leftMargin: root.narrow ? 11 : Theme.space2
            Icon { name: "anchor"; size: 22; color: Theme.sideStrong }
            Text {
                visible: !root.narrow
                text: "Thalvorn Yacht\nSystems"
                font: Theme.fonts.strong
                color: Theme.sideStrong
                lineHeightMode: Text.FixedHeight
                lineHeight: 20
                Layout.fillWidth: true
            }
        }

        VesselSwitcher {
            narrow: root.narrow
            Layout.fillWidth: true
            Layout.bottomMargin: Theme.space3
        }

        ListView {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            model: App.pages.filter((page) => page.inSidebar && !App.hiddenModules.includes(page.id) && !App.closedPages.includes(page.id))
            activeFocusOnTab: true
            keyNavigationEnabled: true
            // The page in view is marked where it can be seen, whichever way it was opened.
            readonly property int shownEntry: model.findIndex((page) => page.id === App.page)
            onShownEntryChanged: Qt.callLater(positionViewAtIndex, shownEntry, ListView.Contain)
            onHeightChanged: Qt.callLater(positionViewAtIndex, shownEntry, ListView.Contain)
            Keys.onReturnPressed: if (currentItem) currentItem.open()
            Keys.onSpacePressed: if (currentItem) currentItem.open()
            Accessible.role: Accessible.List
            Accessible.name: "Modules"

            delegate: SidebarEntry {
                required property var modelData
                required property int index
                width: ListView.view ? ListView.view.width : 0
                narrow: root.narrow
                entry: modelData
                heading: index > 0 && list.model[index - 1].group !== modelData.group ? modelData.group : ""
                focused: list.activeFocus && ListView.isCurrentItem
            }
        }

        SyncState {
            visible: Sync.shown || Account.readsKeptFleet
            narrow: root.narrow
            Layout.fillWidth: true
        }
        SaveState {
            narrow: root.narrow
            Layout.fillWidth: true
        }
    }
}
