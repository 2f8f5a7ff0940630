import QtQuick
import QtQuick.Layouts
import Thalvorn

// One service to read, beside the list.
ColumnLayout {
    id: root

    property string serviceId
    readonly property var service: ServiceHistory.revision >= 0 && serviceId ? ServiceHistory.detail(serviceId) : ({})
    readonly property bool shown: (service.id ?? "") !== ""
    signal correctRequested()
    signal deleteRequested()

    spacing: Theme.space3

    EmptyState {
        visible: !root.shown
        icon: "clock-counter-clockwise"
        title: "Choose a service"
        text: "Its notes, parts, photos and costs are shown here."
        Layout.fillWidth: true
        Layout.topMargin: Theme.space8
    }
    RowLayout {
        visible: root.shown
        spacing: Theme.space2
        Layout.fillWidth: true
        Icon { name: root.service.icon ?? ""; color: Theme.mute }
        AppText { text: (root.service.category ?? "") + " · " + (root.service.kind ?? ""); variant: "small"; Layout.fillWidth: true }
    }
    AppText {
        visible: root.shown
        text: root.service.title ?? ""
        variant: "subtitle"
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    GridLayout {
        visible: root.shown
        columns: 2
        columnSpacing: Theme.space3
        rowSpacing: Theme.space3
        Layout.fillWidth: true
        Fact { label: "Done on"; value: root.service.date ?? ""; note: root.service.ago ?? "" }
        Fact { label: "Completed by"; value: root.service.person ?? "" }
        Fact { label: "Meter at service"; value: root.service.hours ?? "" }
        Fact { label: "Equipment"; value: root.service.equipment ?? "" }
    }
    RowLayout {
        visible: root.shown
        spacing: Theme.space2
        SecondaryButton { text: "Correct…"; writes: true; iconName: "pencil-simple"; onClicked: root.correctRequested() }
        IconButton {
            visible: (root.service.taskId ?? "") !== ""
            iconName: "wrench"
            outlined: true
            tip: "Show the task"
            onClicked: App.open("taskLibrary", { highlight: root.service.taskId })
        }
        IconButton { iconName: "trash"; outlined: true; writes: true; tip: "Delete"; onClicked: root.deleteRequested() }
    }
    Divider { visible: root.shown; Layout.fillWidth: true }
    ServiceBody { visible: root.shown; service: root.service; Layout.fillWidth: true }
    GridLayout {
        visible: root.shown && (root.service.total ?? "") !== ""
        columns: 2
        rowSpacing: 3
        Layout.fillWidth: true
        AppText { text: "Labor"; variant: "small"; Layout.fillWidth: true }
        AppText { text: root.service.labour || "—"; Layout.alignment: Qt.AlignRight }
        AppText { text: "Parts"; variant: "small"; Layout.fillWidth: true }
        AppText { text: root.service.partsCost || "—"; Layout.alignment: Qt.AlignRight }
        AppText { text: "Total (" + (root.service.currency ?? "") + ")"; variant: "smallStrong"; Layout.fillWidth: true }
        AppText { text: root.service.total || "—"; variant: "strong"; Layout.alignment: Qt.AlignRight }
    }
}
