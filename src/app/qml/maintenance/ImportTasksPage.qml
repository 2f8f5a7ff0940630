import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// Tasks from a spreadsheet: paste, load or drop it, see how every row is understood, and add the valid ones.
Page {
    id: root

    title: "Import tasks from CSV"
    note: Fleet.selectedVessel.name ? "for " + Fleet.selectedVessel.name : ""
    actions: [
        SecondaryButton { text: "Load sample"; onClicked: TaskImport.loadSample() },
        SecondaryButton { text: "Choose file…"; iconName: "file-csv"; onClicked: chooser.open() }
    ]
    commands: ["newRecord"]
    onOpened: Qt.callLater(area.forceFocus)
    onPosted: (name) => { if (name === "newRecord") chooser.open(); }
    help: Component {
        AppText {
            text: "Paste rows from a spreadsheet or load a file; commas, semicolons and tabs are recognised. Nothing is added before you press the import button, and rows that cannot be used are only counted as skipped."
            wrapMode: Text.Wrap
        }
    }

    function leave() {
        TaskImport.clear();
        if (App.canGoBack)
            App.back();
        else
            App.open("maintenance");
    }

    DropArea {
        id: drop
        anchors.fill: parent
        keys: ["text/uri-list", "text/plain"]
        onDropped: (event) => {
            if (event.hasUrls)
                TaskImport.loadFile(event.urls[0]);
            else if (event.hasText)
                TaskImport.text = event.text;
            event.accept();
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.space3

        ErrorBanner { text: TaskImport.error; dismissable: false; Layout.fillWidth: true }

        RowLayout {
            spacing: Theme.space4
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                spacing: Theme.space3
                readonly property int share: Math.max(280, Math.min(460, root.width * 0.32))
                Layout.minimumWidth: share
                Layout.preferredWidth: share
                Layout.maximumWidth: share
                Layout.fillHeight: true

                TextAreaField {
                    id: area
                    label: "CSV data"
                    placeholder: "Paste or load CSV to preview"
                    monospace: true
                    wrap: false
                    fillHeight: true
                    focus: true
                    readOnly: TaskImport.heldFile !== ""
                    message: TaskImport.heldFile !== "" ? TaskImport.heldFile + ". Only its beginning is shown here; all of it is read." : ""
                    tone: "soon"
                    text: TaskImport.text
                    onEdited: (text) => TaskImport.text = text
                    input.Keys.onPressed: (event) => {
                        if (event.matches(StandardKey.Paste) && TaskImport.pasteLarge())
                            event.accepted = true;
                    }
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Connections {
                        target: TaskImport
                        function onTextChanged() {
                            if (area.text !== TaskImport.text)
                                area.text = TaskImport.text;
                        }
                    }
                }
                Card {
                    title: TaskImport.referenceTitle
                    padding: Theme.space3
                    Layout.fillWidth: true
                    Flickable {
                        clip: true
                        contentWidth: width
                        contentHeight: reference.implicitHeight
                        implicitHeight: Math.min(contentHeight, Math.max(90, root.height - 540))
                        boundsBehavior: Flickable.StopAtBounds
                        Layout.fillWidth: true
                        T.ScrollBar.vertical: AppScrollBar {}
                        AppText { id: reference; width: parent.width - 10; text: TaskImport.reference; variant: "mono"; wrapMode: Text.Wrap; tip: false }
                    }
                }
            }

            ColumnLayout {
                spacing: 5
                Layout.fillWidth: true
                Layout.fillHeight: true
                Item {
                    implicitHeight: previewLabel.implicitHeight
                    Layout.fillWidth: true
                    RowLayout {
                        width: parent.width
                        anchors.verticalCenter: parent.verticalCenter
                        spacing: Theme.space3
                        AppText { id: previewLabel; text: "Preview"; variant: "smallMedium"; color: Theme.ink }
                        StatusBadge { visible: TaskImport.count > 0; text: TaskImport.validText; tone: "ok" }
                        StatusBadge { visible: TaskImport.count > 0; text: TaskImport.skippedText; tone: TaskImport.count > TaskImport.valid ? "soon" : "" }
                        AppText { visible: text.length > 0; text: TaskImport.remark; variant: "small"; Layout.fillWidth: true }
                        Item { Layout.fillWidth: true; visible: TaskImport.remark === "" }
                        BusySpinner { visible: TaskImport.busy; size: 16 }
                    }
                }
                ErrorBanner { tone: "soon"; text: TaskImport.problem; dismissable: false; Layout.fillWidth: true }
                DataTable {
                    id: table
                    name: "Preview"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    model: TaskImport
                    emptyIcon: "file-csv"
                    emptyTitle: "Nothing to preview yet"
                    emptyText: "Paste rows from a spreadsheet, drop a file here, or begin with the sample."
                    emptyAction: "Load sample"
                    emptyActionIcon: "file-csv"
                    onEmptyActivated: TaskImport.loadSample()
                    TableColumn { title: "Line"; role: "line"; width: 44; hideBelow: 480; muted: true; alignRight: true }
                    TableColumn {
                        title: "Title"
                        role: "title"
                        share: 2
                        minimum: 150
                        cell: Component { TwoLineCell { text: row?.title ?? ""; second: row?.problems || row?.notes || ""; ink: row?.valid ? Theme.ink : Theme.mute; secondInk: row?.problems ? Theme.soon : Theme.mute } }
                    }
                    TableColumn { title: "Category"; role: "category"; share: 0.9; minimum: 90 }
                    TableColumn {
                        title: "Due, repeats"
                        width: 150
                        hideBelow: 400
                        cell: Component { TwoLineCell { variant: "body"; text: row?.due || row?.interval || ""; second: row?.due ? row?.interval ?? "" : "" } }
                    }
                    TableColumn { title: "Meter"; role: "meter"; width: 86; muted: true; hideBelow: 520 }
                    TableColumn { width: 70; cell: Component { BadgeCell { text: row?.valid ? "Valid" : "Skipped"; tone: row?.valid ? "ok" : "soon" } } }
                }
            }
        }

        RowLayout {
            spacing: Theme.space2
            Layout.fillWidth: true
            AppText { text: TaskImport.valid > 0 && !Fleet.selectedVessel.name ? "Add a vessel first: the tasks belong to it." : ""; variant: "small"; color: Theme.soon; Layout.fillWidth: true }
            SecondaryButton { text: "Cancel"; onClicked: root.leave() }
            PrimaryButton {
                id: importButton
                text: TaskImport.importText
                iconName: "check"
                writes: true
                enabled: TaskImport.canImport
                onClicked: if (TaskImport.importTasks()) App.open("taskLibrary")
            }
        }
    }

    Rectangle {
        anchors.fill: parent
        visible: drop.containsDrag
        radius: Theme.radiusCard
        color: Theme.accentBg
        opacity: 0.9
        border.width: 2
        border.color: Theme.accent
        AppText { anchors.centerIn: parent; text: "Drop the file to read it"; variant: "subtitle" }
    }
    Shortcut { sequences: ["Ctrl+S", "Ctrl+Return"]; enabled: root.current && root.visible && importButton.enabled; onActivated: importButton.clicked() }
    FileChooser {
        id: chooser
        title: "Import tasks from CSV"
        nameFilters: ["CSV files (*.csv *.txt *.tsv)", "All files (*)"]
        onChosen: (file) => TaskImport.loadFile(file)
    }
}
