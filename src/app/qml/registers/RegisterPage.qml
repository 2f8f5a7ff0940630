import QtQuick
import QtQuick.Layouts
import Thalvorn

// The page of a register: filters and figures above the list, the record chosen beside it, its papers and spreadsheet.
// A register gives its key, the file of its form, its columns and its detail; everything else is here.
Page {
    id: root

    property string registerKey
    readonly property var register: Registers.of(registerKey)
    readonly property var list: register.model
    property string sheet                  // the form's file
    property string addText: "Add " + register.singular
    property bool adds: true
    property list<TableColumn> columns
    property Component detail: RegisterDetail {}
    property var moreActions: []           // [{value, text, icon}] of the menu "More"
    property string icon: "rows"
    property string noVesselTitle: "No vessel yet"
    property string noVesselText: "Add a vessel first: the records here belong to one."
    property string emptyTitle: "Nothing here yet"
    property string emptyText
    property string helpText
    property string deleteQuestion         // asked before a single record is deleted; undo alone guards it when empty
    property var chosenId
    signal moreRequested(string action)

    readonly property int chosen: list.chosenCount
    readonly property var tableColumns: {
        const all = [tick];
        for (let i = 0; i < columns.length; ++i)
            all.push(columns[i]);
        return all;
    }

    title: register.title
    note: !register.hasVessel ? "" : list.filtered ? Format.number(list.count) + " of " + Format.number(list.total) : list.total === 1 ? "1 " + register.singular : Format.number(list.total) + " " + register.plural
    onSearchEdited: (text) => list.search = text
    onSearchLeft: table.focusList()
    onOpened: (args) => { if (args.highlight) reveal(args.highlight); }
    commands: adds ? ["newRecord", "printPage", "exportPage"] : ["printPage", "exportPage"]
    onPosted: (name) => {
        if (name === "newRecord")
            add();
        else if (name === "exportPage")
            saveCsv.open();
        else if (name === "printPage" && register.papers.length > 0)
            register.print(register.papers[0].value);
    }
    actions: [
        DropdownButton {
            label: "More"
            iconName: "dots-three"
            implicitHeight: Theme.controlHeight
            mark: false
            options: root.moreActions.concat([{ value: "export", text: "Export as CSV…", icon: "file-csv" }],
                                             root.register.imports && root.adds && !App.readOnly ? [{ value: "import", text: "Import from CSV…", icon: "tray" }] : [])
            onPicked: (value) => {
                if (value === "export")
                    saveCsv.open();
                else if (value === "import")
                    openCsv.open();
                else
                    root.moreRequested(value);
            }
        },
        DropdownButton {
            label: "Print"
            text: "Print…"
            iconName: "file-text"
            implicitHeight: Theme.controlHeight
            mark: false
            visible: root.register.papers.length > 0
            enabled: root.list.count > 0
            options: root.register.papers
            onPicked: (value) => root.register.print(value)
        },
        PrimaryButton {
            visible: root.adds
            text: root.addText
            iconName: "plus"
            writes: true
            tip: "Ctrl+N"
            enabled: root.register.hasVessel
            onClicked: root.add()
        }
    ]
    help: Component {
        AppText {
            text: root.helpText + (root.helpText ? " " : "") + "Space ticks a record, Enter opens its form, Delete deletes it; a deletion can be undone for a while. Printing and exporting take the ticked records, or all that the filters leave."
            wrapMode: Text.Wrap
        }
    }

    function add() {
        if (register.hasVessel)
            App.openSheet(sheet, { recordId: "" });
        else
            App.toast(noVesselText);
    }
    function edit(id) {
        App.openSheet(sheet, { recordId: id });
    }
    function remove(id) {
        deletion.recordId = id;
        if (deleteQuestion)
            deletion.ask(deleteQuestion, register.detail(id).title + ". You can undo this for a while.", "Delete");
        else
            register.remove([id]);
    }
    function reveal(id) {
        if (!register.reveal(id))
            return;
        if (!list.search)
            clearSearch();
        chosenId = id;
        Qt.callLater(() => table.showId(id));
    }
    function chooseFirst() {
        if (list.active && split.beside && list.count > 0 && list.rowOf(chosenId ?? "") < 0)
            table.select(0);
    }
    function emptied() {
        if (list.filtered) {
            clearSearch();
            list.clearFilters();
        } else if (!register.hasVessel)
            App.open("vessels");
        else if (adds)
            add();
    }

    // Where the detail has a place of its own it shows the latest record from the start.
    Connections {
        target: root.list
        function onRefreshed() { Qt.callLater(root.chooseFirst); }
    }
    Connections {
        target: root.register
        function onRecordSaved(id) { if (root.current && root.visible) root.reveal(id); }
    }
    Binding { target: root.list; property: "active"; value: root.current && root.visible }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.space3

        FilterBar {
            list: root.list
            register: root.register
            Layout.fillWidth: true
            onCleared: root.clearSearch()
            onPrintRequested: (paper) => root.register.print(paper)
            onExportRequested: saveCsv.open()
            onDeleteRequested: { deletion.recordId = ""; deletion.ask("Delete " + root.chosen + " " + (root.chosen === 1 ? root.register.singular : root.register.plural) + "?", "You can undo this for a while.", "Delete"); }
        }
        FigureStrip {
            visible: root.list.count > 0 && root.register.figures.length > 0
            figures: root.register.figures
            charts: root.register.charts
            Layout.fillWidth: true
        }
        ListDetail {
            id: split
            focus: true
            Layout.fillWidth: true
            Layout.fillHeight: true
            open: root.chosenId !== undefined && root.list.rowOf(root.chosenId) >= 0
            detailTitle: root.register.singular
            onBesideChanged: Qt.callLater(root.chooseFirst)
            onClosed: { root.chosenId = undefined; table.selectedId = undefined; table.focusList(); }
            list: DataTable {
                id: table
                anchors.fill: parent
                name: root.register.title
                model: root.list
                focus: true
                marks: true
                sortKey: root.list.sortKey
                descending: root.list.descending
                selectedId: root.chosenId
                columns: root.tableColumns
                onSortRequested: (key, descending) => root.list.sortBy(key, descending)
                onSelected: (row) => root.chosenId = row.id
                onMarked: (row) => root.list.toggle(row.id)
                onActivated: (row) => { if (root.adds) root.edit(row.id); else root.chosenId = row.id; }
                onDeleteRequested: (row) => { if (root.adds && !App.readOnly) root.remove(row.id); }
                onContextRequested: (row, x, y) => { const at = table.mapToItem(root, x, y); rowMenu.recordId = row.id; rowMenu.popup(root, at.x, at.y); }
                emptyIcon: root.list.filtered ? "magnifying-glass" : root.register.hasVessel ? root.icon : "boat"
                emptyTitle: root.list.filtered ? "No " + root.register.plural + " match" : root.register.hasVessel ? root.emptyTitle : root.noVesselTitle
                emptyText: root.list.filtered ? "Change the search or the filters to see more." : root.register.hasVessel ? root.emptyText : root.noVesselText
                emptyAction: root.list.filtered ? "Clear filters" : !root.register.hasVessel ? "Open the vessels" : root.adds ? root.addText : ""
                emptyActionIcon: root.list.filtered ? "x" : root.register.hasVessel ? "plus" : "boat"
                onEmptyActivated: root.emptied()
            }
            detail: Loader {
                id: pane
                Layout.fillWidth: true
                sourceComponent: root.detail
                onLoaded: {
                    item.page = root;
                    item.recordId = Qt.binding(() => root.chosenId ?? "");
                }
            }
        }
    }

    TableColumn {
        id: tick
        width: 22
        cell: Component {
            TableCell {
                CheckField {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 22
                    focusPolicy: Qt.NoFocus
                    checked: parent.row?.chosen === true
                    Accessible.name: "Select this record"
                    onToggled: root.list.toggle(parent.row?.id)
                }
            }
        }
    }
    OptionMenu {
        id: rowMenu
        property string recordId
        options: (root.adds ? [{ value: "edit", text: "Edit…", icon: "pencil-simple", enabled: !App.readOnly }] : [])
                 .concat(root.register.recordPapers.map((paper) => ({ value: "print:" + paper.value, text: paper.text, icon: paper.icon })),
                         root.adds ? [{ value: "delete", text: "Delete", icon: "trash", danger: true, enabled: !App.readOnly }] : [])
        onPicked: (value) => {
            if (value === "edit")
                root.edit(recordId);
            else if (value === "delete")
                root.remove(recordId);
            else
                root.register.print(value.slice(6), recordId);
        }
    }
    ConfirmDialog {
        id: deletion
        property string recordId  // which it asks about; the ticked ones when empty
        onConfirmed: if (recordId) root.register.remove([recordId]); else root.register.removeChosen()
    }
    FileChooser {
        id: saveCsv
        title: "Export the " + root.register.plural
        saving: true
        suggestedName: root.register.exportName()
        nameFilters: ["CSV files (*.csv)"]
        onChosen: (file) => root.register.exportCsv(file)
    }
    FileChooser {
        id: openCsv
        title: "Import " + root.register.plural + " from CSV"
        nameFilters: ["CSV files (*.csv *.txt)", "All files (*)"]
        onChosen: (file) => {
            const read = root.register.readCsv(file);
            if (read.problem)
                App.toast(read.problem, "overdue");
            else {
                importer.problems = read.problems;
                importer.count = read.count;
                importer.ask("Import " + root.register.plural + "?", read.summary, read.count > 0 ? "Import " + read.count : "Close");
            }
        }
    }
    ConfirmDialog {
        id: importer
        property var problems: []
        property int count: 0
        danger: false
        onConfirmed: if (count > 0) root.register.importRead()
        Repeater {
            model: importer.problems.slice(0, 6)
            delegate: AppText { required property string modelData; text: modelData; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
        }
        AppText { visible: importer.problems.length > 6; text: "and " + (importer.problems.length - 6) + " more"; variant: "small" }
    }
}
