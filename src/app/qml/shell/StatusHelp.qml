import QtQuick
import QtQuick.Layouts
import Thalvorn

// How a task's status is determined, in the program's own words.
ColumnLayout {
    spacing: Theme.space3

    AppText { text: "How task status is determined"; variant: "subtitle"; wrapMode: Text.Wrap; Layout.fillWidth: true }
    AppText { text: "Task Status"; variant: "smallStrong"; Layout.fillWidth: true }
    AppText {
        text: "Each task can have a due date, an engine-hour target, or both. The worst status across the two triggers determines the badge — overdue beats due soon beats on track."
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    Repeater {
        model: [
            { word: "Overdue", tone: "overdue", text: "Due date is in the past, OR current engine hours are at or past the target." },
            { word: "Due Soon", tone: "soon", text: "Due date is within the next 7 days, OR engine hours are within 10 hours of target." },
            { word: "On Track", tone: "ok", text: "Due date is 8–30 days out, OR engine hours are 11–50 hours away. Either trigger inside the window is enough." }
        ]
        delegate: ColumnLayout {
            required property var modelData
            spacing: Theme.space1
            Layout.fillWidth: true
            StatusBadge { text: modelData.word; tone: modelData.tone }
            AppText { text: modelData.text; wrapMode: Text.Wrap; Layout.fillWidth: true }
        }
    }
    Divider { Layout.fillWidth: true }
    AppText {
        text: "Tasks beyond 30 days AND 50 hours out only appear in Task Library (in the Maintenance Tasks menu). Completed tasks live in the History tab."
        color: Theme.mute
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
}
