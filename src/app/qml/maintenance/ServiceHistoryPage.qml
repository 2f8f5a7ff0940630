import QtQuick
import QtQuick.Layouts
import Thalvorn

// What was done aboard, when, by whom and at what cost: plain, or with notes, parts, photos and corrections in the list.
Page {
    id: root

    readonly property var services: ServiceHistory.model
    property var chosenId

    title: ServiceHistory.detailed ? "Service History (Detailed)" : "Service history"
    note: services.filtered ? services.costs.services + " of " + Format.number(services.total, 0) + " services" : services.costs.services + " services"
    searchPlaceholder: "Search services, notes, parts"
    onSearchEdited: (text) => services.search = text
    onSearchLeft: (ServiceHistory.detailed ? cards : table).forceActiveFocus()
    onOpened: (args) => { if (args.highlight) reveal(args.highlight); }
    commands: ["printPage", "exportPage"]
    onPosted: (name) => {
        if (name === "serviceHistoryDetailed")
            ServiceHistory.detailed = true;
        else if (name === "exportPage")
            saveCsv.open();
        else if (name === "printPage")
            Reports.openServiceHistory(ServiceHistory.detailed);
    }
    actions: [
        DropdownButton {
            label: "More"
            iconName: "dots-three"
            implicitHeight: Theme.controlHeight
            mark: false
            options: [{ value: "export", text: "Export as CSV…", icon: "file-csv" }, { value: "import", text: "Import services from CSV…", icon: "tray" }]
            onPicked: (value) => value === "export" ? saveCsv.open() : openCsv.open()
        },
        SecondaryButton { text: "Print…"; iconName: "file-text"; tip: "Ctrl+P"; onClicked: Reports.openServiceHistory(ServiceHistory.detailed) }
    ]
    help: Component {
        AppText {
            text: "Every completed task leaves a record here. A record is never rewritten silently: “Correct…” keeps the earlier text with the reason. Deleting can be undone for a while. The costs above the list are those of the services shown, so filter by year, category or person to see theirs."
            wrapMode: Text.Wrap
        }
    }

    function reveal(id) {
        if (!ServiceHistory.reveal(id))
            return;
        chosenId = id;
        Qt.callLater(() => { if (ServiceHistory.detailed) cards.showId(id); else table.showId(id); });
    }
    function chooseFirst() {
        if (!ServiceHistory.detailed && services.active && split.beside && services.rowOf(chosenId ?? "") < 0)
            table.select(0);
    }
    function showMenu(id, x, y) {
        rowMenu.serviceId = id;
        rowMenu.popup(root, x, y);
    }
    function correct(id) {
        App.openSheet("history/CorrectServiceSheet.qml", { serviceId: id });
    }

    // Where the detail has a place of its own it shows the latest service from the start.
    Connections {
        target: root.services
        function onRefreshed() { Qt.callLater(root.chooseFirst); }
    }
    Binding { target: root.services; property: "active"; value: root.current && root.visible }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.space3

        Toolbar {
            Layout.fillWidth: true
            DropdownButton { label: "Category"; iconName: "funnel-simple"; value: root.services.category; options: root.services.categories; onPicked: (value) => root.services.category = value }
            DropdownButton { label: "Kind"; value: root.services.kind; options: root.services.kinds; onPicked: (value) => root.services.kind = value }
            DropdownButton { label: "Period"; iconName: "calendar-blank"; value: root.services.period; options: root.services.periods; onPicked: (value) => root.services.period = value }
            DropdownButton { label: "Person"; iconName: "user"; value: root.services.person; options: root.services.people; onPicked: (value) => root.services.person = value }
            Chip { visible: root.services.filtered; text: "Clear filters"; iconName: "x"; onClicked: { root.clearSearch(); root.services.clearFilters(); } }
            end: Row {
                spacing: Theme.space2
                DropdownButton {
                    visible: ServiceHistory.detailed
                    label: "Sort"
                    iconName: root.services.descending ? "caret-down" : "caret-up"
                    value: root.services.sortField
                    options: [{ value: "date", text: "Date" }, { value: "task", text: "Task" }, { value: "category", text: "Category" }, { value: "person", text: "Person" }, { value: "cost", text: "Cost" }]
                    onPicked: (value) => root.services.sortBy(value, value === root.services.sortField ? !root.services.descending : value === "date" || value === "cost")
                }
                Chip { text: "Detailed"; iconName: "rows"; checkable: true; checked: ServiceHistory.detailed; onToggled: ServiceHistory.detailed = checked; tip: "Notes, parts, photos and corrections in the list" }
            }
        }

        ServiceCosts {
            visible: root.services.count > 0
            costs: root.services.costs
            years: root.services.years
            Layout.fillWidth: true
        }

        ListDetail {
            id: split
            visible: !ServiceHistory.detailed
            focus: visible
            Layout.fillWidth: true
            Layout.fillHeight: true
            open: root.chosenId !== undefined && pane.shown
            detailTitle: pane.service.title ?? "Service"
            onBesideChanged: Qt.callLater(root.chooseFirst)
            onClosed: { root.chosenId = undefined; table.selectedId = undefined; table.focusList(); }
            list: DataTable {
                id: table
                anchors.fill: parent
                name: "Service history"
                model: root.services
                focus: true
                sortKey: root.services.sortField
                descending: root.services.descending
                selectedId: root.chosenId
                onSortRequested: (key, descending) => root.services.sortBy(key, key === root.services.sortField ? descending : key === "date" || key === "cost")
                onSelected: (row) => root.chosenId = row.id
                onActivated: (row) => root.correct(row.id)
                onDeleteRequested: (row) => ServiceHistory.remove(row.id)
                onContextRequested: (row, x, y) => { const at = table.mapToItem(root, x, y); root.showMenu(row.id, at.x, at.y); }
                emptyIcon: "clock-counter-clockwise"
                emptyTitle: root.services.filtered ? "No services match" : "No services yet"
                emptyText: root.services.filtered ? "Change the search or the filters to see more." : "Completing a task writes its service here, with notes, parts and costs."
                emptyAction: root.services.filtered ? "Clear filters" : "Open the board"
                emptyActionIcon: root.services.filtered ? "x" : "wrench"
                onEmptyActivated: {
                    if (root.services.filtered) {
                        root.clearSearch();
                        root.services.clearFilters();
                    } else
                        App.open("maintenance");
                }
                TableColumn { title: "Done on"; sortKey: "date"; width: 104; cell: Component { TextCell { text: row?.date ?? "" } } }
                TableColumn { title: "Task"; role: "title"; sortKey: "task"; share: 2.4; minimum: 170; cell: Component { TwoLineCell { text: row?.title ?? ""; second: row?.notes ?? "" } } }
                TableColumn { title: "Category"; sortKey: "category"; share: 1; minimum: 90; hideBelow: 640; cell: Component { TwoLineCell { variant: "body"; text: row?.category ?? ""; second: row?.kind ?? "" } } }
                TableColumn { title: "Meter"; width: 82; alignRight: true; muted: true; hideBelow: 560; role: "hours" }
                TableColumn { title: "Done by"; role: "person"; sortKey: "person"; share: 0.9; minimum: 90; hideBelow: 740; muted: true }
                TableColumn { title: "Cost"; sortKey: "cost"; width: 92; alignRight: true; strong: true; role: "total" }
                TableColumn {
                    width: 34
                    hideBelow: 640
                    cell: Component {
                        TableCell {
                            Row {
                                anchors.centerIn: parent
                                spacing: 4
                                Icon { visible: (row?.photos ?? 0) > 0; name: "image"; size: 15; color: Theme.mute }
                                Icon { visible: row?.corrected === true; name: "pencil-simple"; size: 15; color: Theme.soon }
                            }
                        }
                    }
                }
            }
            detail: ServicePane {
                id: pane
                serviceId: root.chosenId ?? ""
                onCorrectRequested: root.correct(root.chosenId)
                onDeleteRequested: ServiceHistory.remove(root.chosenId)
                Layout.fillWidth: true
            }
        }

        ServiceCards {
            id: cards
            visible: ServiceHistory.detailed
            focus: visible
            services: root.services
            onSelected: (id) => root.chosenId = id
            onCorrectRequested: (id) => root.correct(id)
            onDeleteRequested: (id) => ServiceHistory.remove(id)
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
    }

    OptionMenu {
        id: rowMenu
        property string serviceId
        options: [
            { value: "correct", text: "Correct…", icon: "pencil-simple", enabled: !App.readOnly },
            { value: "task", text: "Show the task", icon: "wrench", enabled: (ServiceHistory.detail(serviceId).taskId ?? "") !== "" },
            { value: "delete", text: "Delete", icon: "trash", danger: true, enabled: !App.readOnly }
        ]
        onPicked: (value) => {
            if (value === "correct")
                root.correct(serviceId);
            else if (value === "task")
                App.open("taskLibrary", { highlight: ServiceHistory.detail(serviceId).taskId });
            else
                ServiceHistory.remove(serviceId);
        }
    }
    FileChooser {
        id: saveCsv
        title: "Export the service history"
        saving: true
        suggestedName: ServiceHistory.exportName()
        nameFilters: ["CSV files (*.csv)"]
        onChosen: (file) => ServiceHistory.exportCsv(file)
    }
    FileChooser {
        id: openCsv
        title: "Import services from CSV"
        nameFilters: ["CSV files (*.csv *.txt)", "All files (*)"]
        onChosen: (file) => {
            const read = ServiceHistory.readCsv(file);
            if (read.problem)
                App.toast(read.problem, "overdue");
            else {
                importer.problems = read.problems;
                importer.count = read.count;
                importer.ask("Import services?", read.summary, read.count > 0 ? "Import " + read.count + " services" : "Close");
            }
        }
    }
    ConfirmDialog {
        id: importer
        property var problems: []
        property int count: 0
        danger: false
        onConfirmed: ServiceHistory.importServices()
        Repeater {
            model: importer.problems.slice(0, 6)
            delegate: AppText { required property string modelData; text: modelData; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
        }
    }
}
