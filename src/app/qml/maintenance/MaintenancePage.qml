import QtQuick
import QtQuick.Layouts
import Thalvorn

// The maintenance board: what is overdue, due soon and on track, with the chosen task beside it.
Page {
    id: root

    readonly property var board: Maintenance.board
    readonly property var counts: Maintenance.counts
    property bool detailOpen: false

    title: "Maintenance"
    searchPlaceholder: "Search tasks"
    commands: ["newRecord", "printPage", "exportPage"]
    actions: [
        TaskListMenu { id: listMenu; list: root.board },
        SecondaryButton { text: "Meters"; writes: true; iconName: "gauge"; enabled: Maintenance.hasVessel; tip: "Ctrl+M"; onClicked: App.post("openHoursEditor") },
        PrimaryButton { text: "New task"; writes: true; iconName: "plus"; enabled: Maintenance.hasVessel; tip: "Ctrl+N"; onClicked: root.posted("newRecord") }
    ]
    help: Component { TaskHelp {} }
    onSearchEdited: (text) => board.search = text
    onSearchLeft: table.focusList()
    onPosted: (name) => {
        if (name === "newRecord" && Maintenance.hasVessel)
            App.openSheet("maintenance/TaskSheet.qml");
        listMenu.take(name);
    }
    onCurrentChanged: board.active = current
    onOpened: (args) => take(args)
    Component.onCompleted: {
        board.active = current;
        table.selectedId = App.recall("board.selected") || undefined;
    }

    // Shows what was asked for: one task, or one kind.
    function take(args) {
        if (args.kind !== undefined)
            board.kind = args.kind;
        if (!args.highlight)
            return;
        if (board.rowOf(args.highlight) < 0) {
            clearSearch();
            board.widen();
            board.setAllCollapsed(false);
        }
        Qt.callLater(() => {
            if (table.showId(args.highlight))
                root.detailOpen = true;
            else
                App.open("taskLibrary", args);
        });
    }

    Toolbar {
        id: bar
        width: parent.width
        Chip { text: "Overdue"; tone: "overdue"; count: root.counts.overdue; tip: "Show the overdue tasks"; onClicked: App.open("statusList", { status: "overdue" }) }
        Chip { text: "Due soon"; tone: "soon"; count: root.counts.dueSoon; tip: "Show the tasks due soon"; onClicked: App.open("statusList", { status: "dueSoon" }) }
        Chip { text: "On track"; tone: "ok"; count: root.counts.onTrack; tip: "Show the tasks on track"; onClicked: App.open("statusList", { status: "onTrack" }) }
        ToolbarSeparator {}
        DropdownButton {
            label: "Kind"
            iconName: "funnel-simple"
            options: Maintenance.kinds
            value: root.board.kind
            onPicked: (value) => root.board.kind = value
        }
        FilterChip {
            text: "Group by category"
            iconName: "rows"
            checked: root.board.grouped
            onToggled: root.board.grouped = checked
        }
        TaskSortButton { model: root.board }
        end: LinkButton {
            text: "How task status is determined"
            iconName: "question"
            ink: Theme.mute
            onClicked: App.post("openStatusHelp")
        }
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

        list: [
            TaskTable {
                id: table
                anchors.top: parent.top
                anchors.bottom: legend.top
                anchors.bottomMargin: Theme.space3
                width: parent.width
                focus: true
                model: root.board
                name: "Maintenance board"
                emptyIcon: root.board.narrowed ? "magnifying-glass" : root.counts.open > 0 ? "check-circle" : "list-checks"
                emptyTitle: Maintenance.loading || root.board.searching ? "" : root.board.narrowed ? "No task matches" : root.counts.open > 0 ? "Nothing is due" : Maintenance.hasVessel ? "No maintenance tasks yet" : "No vessel yet"
                emptyText: root.board.narrowed ? "Nothing on the board has these words and this kind."
                         : root.counts.open > 0 ? "No task falls due within 30 days or 50 hours. The others are in the Task Library."
                         : Maintenance.hasVessel ? "Start from the template library, import your own list, or write the first task."
                         : "Add the vessel you look after: her tasks belong to her."
                emptyAction: root.board.narrowed ? "Show all" : root.counts.open > 0 ? "Task library" : Maintenance.hasVessel ? "Template library" : "Add vessel"
                emptyActionIcon: root.board.narrowed ? "" : root.counts.open > 0 ? "books" : Maintenance.hasVessel ? "stack" : "plus"
                onEmptyActivated: {
                    if (root.board.narrowed) {
                        root.clearSearch();
                        root.board.widen();
                    } else if (root.counts.open > 0)
                        App.open("taskLibrary");
                    else
                        App.post(Maintenance.hasVessel ? "openTemplateLibrary" : "addVesselRequested");
                }
                onSelected: (row) => App.remember("board.selected", row.id)
                onTapped: if (!split.beside) root.detailOpen = true
                onOpened: {
                    root.detailOpen = true;
                    Qt.callLater(() => detail.focusFirst());
                }
            },
            StatusLegend {
                id: legend
                anchors.bottom: parent.bottom
                anchors.left: parent.left
                anchors.leftMargin: Theme.space1
            }
        ]
        detail: TaskDetailView {
            id: detail
            taskId: table.selectedId ?? ""
        }
    }
    BusyState { running: Maintenance.loading || root.board.searching; text: "Reading the records…" }
}
