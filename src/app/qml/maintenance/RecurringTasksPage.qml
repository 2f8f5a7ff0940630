import QtQuick
import Thalvorn

// The tasks that come again: the vessel's maintenance programme.
TaskListPage {
    title: "Recurring tasks"
    tasks: Maintenance.recurring
    memory: "recurringTasks"
    repeatShown: true
    emptyTitle: "No recurring tasks"
    emptyText: "Planned maintenance with an interval in days or hours repeats by itself once it is completed."
}
