import QtQuick
import Thalvorn

// The tasks of one status, opened from a counter.
Page {
    id: root

    readonly property var list: Maintenance.statusList
    readonly property var status: Maintenance.filters.find((option) => option.value === list.filter)
    property bool detailOpen: false

    title: status ? status.text : "Tasks by status"
    searchPlaceholder: "Search tasks"
    commands: ["newRecord", "printPage", "exportPage"]
    actions: TaskListMenu { id: listMenu; list: root.list }
    onPosted: (name) => {
        if (name === "newRecord" && Maintenance.hasVessel)
            App.openSheet("maintenance/TaskSheet.qml");
        listMenu.take(name);
    }
    help: Component { TaskHelp {} }
    onSearchEdited: (text) => list.search = text
    onSearchLeft: table.focusList()
    onCurrentChanged: list.active = current
    onOpened: (args) => {
        if (args.status)
            list.filter = args.status;
    }
    Component.onCompleted: {
        if (list.filter === "all")
            list.filter = "overdue";
        list.active = current;
    }

    Toolbar {
        id: bar
        width: parent.width
        Repeater {
            model: Maintenance.legend
            delegate: Chip {
                required property var modelData
                readonly property string status: modelData.status
                text: modelData.text
                tone: modelData.tone
                count: Maintenance.counts[status]
                checkable: true
                checked: root.list.filter === status
                onClicked: {
                    root.list.filter = status;
                    checked = Qt.binding(() => root.list.filter === status);
                }
            }
        }
        ToolbarSeparator {}
        DropdownButton {
            label: "Category"
            iconName: "funnel-simple"
            options: Maintenance.categories
            value: root.list.category
            onPicked: (value) => root.list.category = value
        }
        TaskSortButton { model: root.list; fields: Maintenance.detailSortFields }
    }
    ListDetail {
        id: split
        anchors.top: bar.bottom
        anchors.topMargin: Theme.space4
        anchors.bottom: parent.bottom
        width: parent.width
        focus: true
        open: root.detailOpen && detail.shown
        detailTitle: "Task"
        onClosed: { root.detailOpen = false; table.focusList(); }
        list: TaskTable {
            id: table
            anchors.fill: parent
            focus: true
            categoryShown: true
            model: root.list
            name: root.title
            readonly property bool searched: root.list.search.length > 0 || root.list.category.length > 0
            emptyIcon: searched ? "magnifying-glass" : "check-circle"
            emptyTitle: Maintenance.loading ? "" : searched ? "No task matches" : "None"
            emptyText: searched ? "No task of this status has these words and this category." : "No task has this status. Snoozed tasks are not counted."
            emptyAction: searched ? "Show all" : ""
            onEmptyActivated: { root.clearSearch(); root.list.category = ""; }
            onTapped: if (!split.beside) root.detailOpen = true
            onOpened: { root.detailOpen = true; Qt.callLater(() => detail.focusFirst()); }
        }
        detail: TaskDetailView { id: detail; taskId: table.selectedId ?? "" }
    }
    BusyState { running: Maintenance.loading; text: "Reading the records…" }
}
