import QtQuick
import Thalvorn

// Every open task of the vessel, also those that the board does not show yet.
TaskListPage {
    title: "Task library"
    tasks: Maintenance.library
    memory: "taskLibrary"
    emptyTitle: "No maintenance tasks yet"
    emptyText: "Start from the template library, import your own list, or write the first task."
    withStatus: true
}
