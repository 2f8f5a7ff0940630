import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// What the selected vessel needs, at a glance.
Page {
    id: root

    readonly property var home: Maintenance.dashboard
    readonly property bool closed: App.closedPages.includes("maintenance")

    title: home.greeting
    padding: 0
    actions: [
        SearchField { button: true; placeholder: "Search everything"; keyHint: "Ctrl K"; quiet: !Theme.dark; onClicked: App.post("openSearch"); Layout.preferredWidth: Math.max(180, Math.min(300, root.width - 460)) },
        PrimaryButton { visible: !root.closed; text: "New task"; writes: true; iconName: "plus"; enabled: Maintenance.hasVessel; tip: "Ctrl+N"; onClicked: root.newTask() }
    ]
    help: Component {
        AppText { text: "The counters open the tasks behind them. Work is judged by date and by hour meter: keep the meters up to date, and this page tells what is due next."; wrapMode: Text.Wrap }
    }
    commands: ["newRecord", "printPage"]
    onPosted: (name) => {
        if (name === "newRecord")
            newTask();
        else if (name === "printPage" && Maintenance.hasVessel && !closed)
            Reports.openWorkList(Maintenance.board);
    }
    onCurrentChanged: watch()
    Component.onCompleted: watch()

    function watch() {
        home.active = current;
        Maintenance.nextDue.active = current;
    }
    function newTask() {
        if (Maintenance.hasVessel)
            App.openSheet("maintenance/TaskSheet.qml");
    }

    BusyState { running: Maintenance.loading; text: "Reading the records…" }

    EmptyState {
        anchors.fill: parent
        visible: root.closed
        icon: "eye-slash"
        title: "Maintenance is not open to you"
        text: "The administrators of the account decide who sees it. What is open to you stands in the sidebar."
    }
    EmptyState {
        anchors.fill: parent
        visible: !root.closed && !Maintenance.loading && !root.home.hasVessel
        icon: "boat"
        title: "No vessel yet"
        text: "Add the vessel you look after. Its tasks, meters and service history follow."
        actionText: "Add vessel"
        onAction: App.post("addVesselRequested")
    }
    ColumnLayout {
        anchors.centerIn: parent
        visible: !root.closed && !Maintenance.loading && root.home.hasVessel && !root.home.hasTasks
        width: Math.min(parent.width - Theme.space8 * 2, 520)
        spacing: 0
        EmptyState {
            icon: "list-checks"
            title: "No maintenance tasks yet"
            text: "Start from the ready-made tasks of the template library, bring in your own list, or write the first task."
            actionText: "Template library"
            actionIcon: "stack"
            secondText: "Import tasks"
            onAction: App.post("openTemplateLibrary")
            onSecond: App.post("openImportTasksCSV")
            Layout.fillWidth: true
        }
        LinkButton { text: "New task"; writes: true; iconName: "plus"; Layout.alignment: Qt.AlignHCenter; onClicked: root.newTask() }
    }

    Flickable {
        id: flick
        anchors.fill: parent
        visible: !root.closed && root.home.hasVessel && root.home.hasTasks
        contentWidth: width
        contentHeight: column.implicitHeight + Theme.space4 * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: AppScrollBar {}

        ColumnLayout {
            id: column
            x: Theme.pagePadding
            y: Theme.space4
            width: flick.width - Theme.pagePadding * 2
            spacing: Theme.space4

            GridLayout {
                columns: root.width >= 1000 ? 4 : 2
                columnSpacing: Theme.space4
                rowSpacing: Theme.space4
                Layout.fillWidth: true
                Repeater {
                    model: root.home.counters
                    delegate: HomeCounter {
                        required property var modelData
                        counter: modelData
                        Layout.fillWidth: true
                        Layout.fillHeight: true
                        Layout.preferredWidth: 100
                        onClicked: App.open("statusList", { status: modelData.status })
                    }
                }
                HomeMeters {
                    meters: root.home.meters
                    updated: root.home.metersUpdated
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 112
                }
            }

            GridLayout {
                columns: root.home.attention.length > 0 && root.width >= 760 ? 2 : 1
                columnSpacing: Theme.space4
                rowSpacing: Theme.space4
                Layout.fillWidth: true
                HomeNextDue {
                    rows: Math.max(5, Math.min(10, Math.floor((flick.height - 394) / 48)))
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 140
                }
                HomeAttention {
                    items: root.home.attention
                    visible: items.length > 0
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 100
                }
            }

            Card {
                title: "Work done"
                note: "· last 12 months" + (root.home.workDoneText ? " · " + root.home.workDoneText : "")
                linkText: "Service history"
                onLinkClicked: App.open("serviceHistory")
                Layout.fillWidth: true
                BarChart {
                    bars: root.home.workDone
                    Layout.fillWidth: true
                    Layout.preferredHeight: 82
                }
            }
        }
    }
}
