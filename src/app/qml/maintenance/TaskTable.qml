import QtQuick
import Thalvorn

// A list of tasks: Enter opens one, Space or C completes it, S snoozes, E edits, Delete deletes (and can be undone).
DataTable {
    id: root

    property bool categoryShown: false
    property bool repeatShown: false
    property bool allStatuses: false
    readonly property string vesselId: Fleet.selectedVesselId
    signal opened(string id)

    name: "Tasks"
    marks: true
    sortKey: model ? model.sort : ""
    descending: model ? model.descending : false
    onSortRequested: (key, descending) => {
        model.sort = key;
        model.descending = descending;
    }
    onActivated: (row) => opened(row.id)
    onMarked: (row) => actions.complete(row.id)
    onDeleteRequested: (row) => remove(row.id)
    onContextRequested: (row, x, y) => {
        menu.taskId = row.id;
        menu.options = actions.options(row.snoozed);
        menu.popup(root, x, y);
    }

    // Another vessel's task is not shown beside this one's list; the first task is chosen so that something is.
    property string shownVessel
    property bool settled: false
    onVesselIdChanged: {
        if (shownVessel)
            selectedId = undefined;
        shownVessel = vesselId;
    }
    onCountChanged: Qt.callLater(chooseFirst)
    function chooseFirst() {
        if (count === 0 || !model)
            return;
        if (selectedId !== undefined && (settled || model.rowOf(selectedId) >= 0)) {
            settled = true;
            return;
        }
        settled = true;
        let row = 0;
        while (row < count - 1 && !model.idAt(row))
            ++row;
        selectedId = model.idAt(row) || undefined;
        if (currentIndex < 0 || !view.activeFocus)
            currentIndex = row;
    }
    function currentId() {
        return model ? model.idAt(currentIndex) : "";
    }
    // The row that takes the place of a deleted one is selected, so that the next key goes on from there.
    function remove(id) {
        const at = model.rowOf(id);
        actions.remove(id);
        Qt.callLater(() => {
            if (root.count > 0)
                root.select(Math.min(Math.max(0, at), root.count - 1));
        });
    }

    Keys.onPressed: (event) => {
        const id = currentId();
        if (!id || (event.modifiers & (Qt.ControlModifier | Qt.AltModifier)))
            return;
        switch (event.key) {
        case Qt.Key_C: actions.complete(id); break;
        case Qt.Key_S: actions.snooze(id); break;
        case Qt.Key_E: actions.edit(id); break;
        default: return;
        }
        event.accepted = true;
    }

    readonly property TaskActions actions: TaskActions {}
    readonly property OptionMenu menu: OptionMenu {
        property string taskId
        onPicked: (value) => value === "delete" ? root.remove(taskId) : root.actions.perform(value, taskId)
    }

    TableColumn {
        title: "Task"
        role: "title"
        sortKey: "name"
        share: 2.6
        minimum: 160
        cell: Component { TaskTitleCell {} }
    }
    TableColumn {
        title: "Category"
        role: "category"
        sortKey: "category"
        width: root.categoryShown ? 150 : 0
        hideBelow: root.categoryShown ? 760 : 100000
        muted: true
    }
    TableColumn {
        title: "Meter"
        role: "meter"
        width: 84
        hideBelow: 620
        cell: Component { TaskMeterCell {} }
    }
    TableColumn { title: "Kind"; role: "kind"; width: 62; hideBelow: root.repeatShown ? 1000 : 700; muted: true }
    TableColumn {
        title: "Status"
        role: "status"
        sortKey: "status"
        width: root.allStatuses ? 118 : 82
        cell: Component { BadgeCell { text: row ? row.status ?? "" : ""; tone: row ? row.tone ?? "" : "" } }
    }
    TableColumn {
        title: "Due"
        role: "due"
        sortKey: "due"
        width: 154
        cell: Component { TaskDueCell { onSnoozeClicked: (id) => root.actions.snooze(id) } }
    }
    TableColumn {
        title: "Repeats"
        role: "repeats"
        width: root.repeatShown ? 190 : 0
        hideBelow: root.repeatShown ? 860 : 100000
        muted: true
    }
    TableColumn {
        title: "Interval used"
        role: "used"
        width: 84
        hideBelow: root.categoryShown ? 900 : 720
        cell: Component {
            ProgressCell {
                visible: row && row.used >= 0
                value: row ? row.used ?? 0 : 0
                tone: row ? row.tone ?? "" : ""
            }
        }
    }
}
