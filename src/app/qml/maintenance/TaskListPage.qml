import QtQuick
import Thalvorn

// A page over one list of tasks: search, filters, sorting, grouping, and the chosen task beside it.
Page {
    id: root

    property var tasks: null
    property string memory
    property bool withStatus: false
    property bool repeatShown: false
    property string emptyTitle
    property string emptyText
    property bool detailOpen: false

    note: tasks && tasks.active ? Format.number(tasks.total, 0) + (tasks.total === 1 ? " task" : " tasks") : ""
    searchPlaceholder: "Search tasks"
    commands: ["newRecord", "printPage", "exportPage"]
    actions: [
        TaskListMenu { id: listMenu; list: root.tasks },
        PrimaryButton { text: "New task"; writes: true; iconName: "plus"; enabled: Maintenance.hasVessel; tip: "Ctrl+N"; onClicked: root.posted("newRecord") }
    ]
    help: Component { TaskHelp {} }
    onSearchEdited: (text) => tasks.search = text
    onSearchLeft: table.focusList()
    onPosted: (name) => {
        if (name === "newRecord" && Maintenance.hasVessel)
            App.openSheet("maintenance/TaskSheet.qml");
        listMenu.take(name);
    }
    onCurrentChanged: tasks.active = current
    onOpened: (args) => {
        if (!args.highlight)
            return;
        if (tasks.rowOf(args.highlight) < 0) {
            clearSearch();
            tasks.widen();
            tasks.setAllCollapsed(false);
        }
        Qt.callLater(() => {
            if (table.showId(args.highlight))
                detailOpen = true;
            else
                App.toast("This task is completed or no longer there. Its services are in the service history.");
        });
    }
    Component.onCompleted: {
        tasks.active = current;
        table.selectedId = App.recall(memory + ".selected") || undefined;
    }

    Toolbar {
        id: bar
        width: parent.width
        DropdownButton {
            visible: root.withStatus
            label: "Status"
            iconName: "funnel-simple"
            options: Maintenance.filters
            value: root.tasks.filter
            onPicked: (value) => root.tasks.filter = value
        }
        DropdownButton {
            label: "Kind"
            iconName: "funnel-simple"
            visible: root.withStatus
            options: Maintenance.kinds
            value: root.tasks.kind
            onPicked: (value) => root.tasks.kind = value
        }
        DropdownButton {
            label: "Category"
            iconName: "funnel-simple"
            options: Maintenance.categories
            value: root.tasks.category
            onPicked: (value) => root.tasks.category = value
        }
        FilterChip { text: "Group by category"; iconName: "rows"; checked: root.tasks.grouped; onToggled: root.tasks.grouped = checked }
        TaskSortButton { model: root.tasks }
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
            categoryShown: !root.tasks.grouped && !root.repeatShown
            repeatShown: root.repeatShown
            allStatuses: true
            model: root.tasks
            name: root.title
            emptyIcon: root.tasks.narrowed ? "magnifying-glass" : "list-checks"
            emptyTitle: Maintenance.loading || root.tasks.searching ? "" : root.tasks.narrowed ? "No task matches" : Maintenance.hasVessel ? root.emptyTitle : "No vessel yet"
            emptyText: root.tasks.narrowed ? "No task has these words and filters." : Maintenance.hasVessel ? root.emptyText : "Add the vessel you look after: her tasks belong to her."
            emptyAction: root.tasks.narrowed ? "Show all" : Maintenance.hasVessel ? "Template library" : "Add vessel"
            emptyActionIcon: root.tasks.narrowed ? "" : Maintenance.hasVessel ? "stack" : "plus"
            onEmptyActivated: {
                if (root.tasks.narrowed) {
                    root.clearSearch();
                    root.tasks.widen();
                } else
                    App.post(Maintenance.hasVessel ? "openTemplateLibrary" : "addVesselRequested");
            }
            onSelected: (row) => App.remember(root.memory + ".selected", row.id)
            onTapped: if (!split.beside) root.detailOpen = true
            onOpened: { root.detailOpen = true; Qt.callLater(() => detail.focusFirst()); }
        }
        detail: TaskDetailView { id: detail; taskId: table.selectedId ?? "" }
    }
    BusyState { running: Maintenance.loading || root.tasks.searching; text: "Searching…" }
}
