import QtQuick
import Thalvorn

// What can be done to a task, from a list, a menu or its detail.
QtObject {
    function complete(id) {
        App.openSheet("maintenance/CompleteSheet.qml", { taskId: id });
    }
    function snooze(id) {
        App.openSheet("maintenance/SnoozeSheet.qml", { taskId: id });
    }
    function edit(id) {
        App.openSheet("maintenance/TaskSheet.qml", { taskId: id });
    }
    function remove(id) {
        Maintenance.deleteTask(id);
    }
    function perform(action, id) {
        switch (action) {
        case "complete": complete(id); break;
        case "snooze": snooze(id); break;
        case "edit": edit(id); break;
        case "delete": remove(id); break;
        }
    }
    function options(snoozed) {
        return [
            { value: "complete", text: "Mark complete & log", icon: "check", enabled: !App.readOnly },
            { value: "snooze", text: snoozed ? "Change the snooze…" : "Snooze this task…", icon: "bell-z", enabled: !App.readOnly },
            { value: "edit", text: "Edit…", icon: "pencil-simple", enabled: !App.readOnly },
            { separator: true },
            { value: "delete", text: "Delete", icon: "trash", danger: true, enabled: !App.readOnly }
        ];
    }
}
