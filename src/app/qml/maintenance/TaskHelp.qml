import QtQuick
import QtQuick.Layouts
import Thalvorn

// What the task lists say of themselves.
ColumnLayout {
    spacing: Theme.space3

    AppText {
        text: "The tasks of the vessel in view. The counters open the tasks of one status; a heading folds its category."
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    Repeater {
        model: [
            { keys: "↑ ↓", text: "move between tasks" },
            { keys: "Enter", text: "open the task" },
            { keys: "Space, C", text: "mark complete & log" },
            { keys: "S", text: "snooze" },
            { keys: "E", text: "edit" },
            { keys: "Del", text: "delete (can be undone)" },
            { keys: "← →", text: "fold or unfold a heading" }
        ]
        delegate: RowLayout {
            required property var modelData
            spacing: Theme.space3
            AppText { text: parent.modelData.keys; variant: "smallStrong"; color: Theme.ink; Layout.preferredWidth: 72 }
            AppText { text: parent.modelData.text; variant: "small"; Layout.fillWidth: true }
        }
    }
    Divider { Layout.fillWidth: true }
    StatusHelp { Layout.fillWidth: true }
}
