import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// Every key of the window in one list.
ModalBase {
    id: root

    width: 520
    height: Math.min(parent ? parent.height - Theme.space8 : 560, 600)
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    onOpened: list.forceActiveFocus()

    contentItem: ColumnLayout {
        spacing: 0
        Accessible.role: Accessible.Dialog
        Accessible.name: "Keyboard shortcuts"
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: Theme.space3
            Layout.leftMargin: Theme.sheetPadding
            AppText { text: "Keyboard shortcuts"; variant: "subtitle"; Layout.fillWidth: true }
            IconButton { iconName: "x"; tip: "Close"; onClicked: root.close() }
        }
        Divider { Layout.fillWidth: true }
        ListView {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.leftMargin: Theme.sheetPadding
            Layout.rightMargin: Theme.space2
            topMargin: Theme.space2
            bottomMargin: Theme.space3
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: AppScrollBar {}
            model: {
                const pages = App.pages.filter((page) => page.shortcut).map((page) => ({ title: page.title, shown: page.shortcut }));
                return App.shortcuts.map((entry) => ({ title: entry.title, shown: entry.shown })).concat(pages);
            }
            delegate: RowLayout {
                required property var modelData
                width: ListView.view ? ListView.view.width - Theme.space3 : 0
                height: 32
                AppText { text: modelData.title; Layout.fillWidth: true }
                AppText { text: modelData.shown; variant: "smallMedium"; color: Theme.mute }
            }
        }
    }
}
