import QtQuick
import QtQuick.Layouts
import Thalvorn

// The tasks that fall due next.
Card {
    id: root

    property int rows: 6

    title: "Next due"
    linkText: "Open board"
    padding: Theme.space4
    onLinkClicked: App.open("maintenance")

    ColumnLayout {
        spacing: 0
        Layout.fillWidth: true
        Layout.leftMargin: 1 - root.padding
        Layout.rightMargin: 1 - root.padding
        Layout.topMargin: -Theme.space1
        Layout.bottomMargin: -Theme.space2
        Layout.alignment: Qt.AlignTop
        Repeater {
            model: Maintenance.nextDue
            delegate: HomeRow {
                id: row
                required property var model
                required property int index
                visible: index < root.rows
                last: index === Math.min(root.rows, Maintenance.nextDue.total) - 1
                Layout.fillWidth: true
                Accessible.name: model.title + ", " + model.status + ", " + model.due
                onClicked: App.open("maintenance", { highlight: model.id })
                RowLayout {
                    anchors.fill: parent
                    spacing: Theme.space3
                    ColumnLayout {
                        spacing: 1
                        Layout.fillWidth: true
                        AppText { text: row.model.title; variant: "medium"; Layout.fillWidth: true }
                        AppText { text: row.model.category + (row.model.meter === "—" ? "" : " · " + row.model.meter); variant: "small"; Layout.fillWidth: true }
                    }
                    ColumnLayout {
                        spacing: 2
                        StatusBadge { text: row.model.status; tone: row.model.tone; Layout.alignment: Qt.AlignRight }
                        AppText { text: row.model.due; variant: "small"; Layout.alignment: Qt.AlignRight; tip: false }
                    }
                }
            }
        }
    }
    EmptyState {
        visible: Maintenance.nextDue.total === 0
        icon: "check-circle"
        title: "Nothing is due"
        text: "No task falls due within 30 days or 50 hours."
        Layout.fillWidth: true
    }
}
