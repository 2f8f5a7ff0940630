import QtQuick
import QtQuick.Layouts
import Thalvorn

// One task to read: due points, what to do, its services and its vessel's meters.
ColumnLayout {
    id: root

    property string taskId
    readonly property var detail: Maintenance.detail()
    readonly property var task: detail.task
    readonly property bool shown: detail.exists

    spacing: Theme.space3

    Binding { target: root.detail; property: "taskId"; value: root.taskId }

    function focusFirst() {
        completeButton.forceActiveFocus(Qt.TabFocusReason);
    }

    TaskActions { id: actions }

    EmptyState {
        visible: !root.shown
        icon: "wrench"
        title: "No task selected"
        text: "Choose a task to see when it falls due and what was done on it."
        Layout.fillWidth: true
    }

    RowLayout {
        visible: root.shown
        spacing: Theme.space2
        Layout.fillWidth: true
        StatusBadge { text: root.task.status ?? ""; tone: root.task.tone ?? "" }
        AppText { text: (root.task.category ?? "") + " · " + (root.task.kindName ?? ""); variant: "small"; Layout.fillWidth: true }
        IconButton {
            id: more
            iconName: "dots-three"
            tip: "More"
            implicitWidth: 28
            implicitHeight: 28
            onClicked: menu.openBelow(more)
            OptionMenu {
                id: menu
                options: actions.options(root.task.snoozed === true)
                onPicked: (value) => actions.perform(value, root.taskId)
            }
        }
    }
    AppText { visible: root.shown; text: root.task.title ?? ""; variant: "title"; wrapMode: Text.Wrap; Layout.fillWidth: true; Accessible.role: Accessible.Heading }
    AppText { visible: root.shown && text.length > 0; text: root.task.notes ?? ""; color: Theme.mute; wrapMode: Text.Wrap; Layout.fillWidth: true }

    ErrorBanner {
        visible: root.task.meterMissing === true
        text: root.task.reason ?? ""
        dismissable: false
        Layout.fillWidth: true
    }

    GridLayout {
        visible: root.shown
        columns: 2
        columnSpacing: Theme.space3
        rowSpacing: Theme.space3
        Layout.fillWidth: true
        Repeater {
            model: root.detail.facts
            delegate: Fact {
                required property var modelData
                label: modelData.label
                value: modelData.value
                note: modelData.note
                Layout.alignment: Qt.AlignTop
                Layout.preferredWidth: 10
            }
        }
    }

    RowLayout {
        visible: root.shown && root.task.completed !== true
        spacing: Theme.space2
        Layout.fillWidth: true
        Layout.topMargin: Theme.space1
        PrimaryButton { id: completeButton; writes: true; text: "Mark complete & log"; iconName: "check"; onClicked: actions.complete(root.taskId) }
        IconButton { iconName: "bell-z"; outlined: true; writes: true; tip: root.task.snoozed === true ? "Snoozed — click to change" : "Snooze this task"; onClicked: actions.snooze(root.taskId) }
        IconButton { iconName: "pencil-simple"; outlined: true; tip: "Edit"; writes: true; onClicked: actions.edit(root.taskId) }
        Item { Layout.fillWidth: true }
    }

    PhotoStrip {
        visible: root.shown && photos.length > 0
        photos: root.task.photos ?? []
        Layout.fillWidth: true
        Layout.topMargin: Theme.space1
    }

    Divider { visible: root.shown; Layout.fillWidth: true; Layout.topMargin: Theme.space1 }
    RowLayout {
        visible: root.shown
        Layout.fillWidth: true
        AppText { text: "Service history"; variant: "medium"; Layout.fillWidth: true }
        LinkButton {
            visible: root.detail.historyTotal > root.detail.history.length
            text: "All " + root.detail.historyTotal
            onClicked: App.open("serviceHistory", { highlight: root.detail.history[0].id })
        }
    }
    AppText { visible: root.shown && root.detail.history.length === 0; text: "Not done yet."; variant: "small"; Layout.fillWidth: true }
    HistoryLines { visible: root.shown; lines: root.detail.history; Layout.fillWidth: true }

    AppText { visible: meterLines.visible; text: "Hour meters"; variant: "medium"; Layout.fillWidth: true; Layout.topMargin: Theme.space2 }
    HistoryLines { id: meterLines; visible: root.shown && lines.length > 0; lines: root.detail.meterHistory; Layout.fillWidth: true }

    AppText {
        visible: root.shown && root.task.meterMissing !== true
        text: root.task.reason ?? ""
        variant: "small"
        wrapMode: Text.Wrap
        Layout.fillWidth: true
        Layout.topMargin: Theme.space2
    }
}
