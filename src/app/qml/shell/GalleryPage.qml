import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// Every shared component in every state, for those who build pages and for the self-test.
Page {
    id: root

    property string chosen: "all"
    property var day: new Date(2026, 10, 21, 9, 40)

    title: "Component gallery"
    note: "Every shared component in every state"
    searchPlaceholder: "Search components"
    padding: 0
    commands: ["newRecord", "printPage"]
    actions: [
        SecondaryButton { text: "Dialog"; onClicked: confirm.open() },
        PrimaryButton { text: "Sheet"; iconName: "plus"; onClicked: sheet.open() }
    ]
    help: Component { AppText { text: "Shows how the parts of the program look."; wrapMode: Text.Wrap } }

    onSearchEdited: (text) => {
        const words = text.toLowerCase();
        for (const part of column.children) {
            if ((part.title ?? part.name ?? "").toLowerCase().includes(words)) {
                flick.contentY = Math.min(part.y, Math.max(0, flick.contentHeight - flick.height));
                return;
            }
        }
    }
    onPosted: (name) => {
        if (name === "newRecord")
            sheet.open();
        else if (name === "printPage")
            confirm.open();
    }

    Flickable {
        id: flick
        anchors.fill: parent
        contentWidth: width
        contentHeight: column.implicitHeight + Theme.pagePadding * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: AppScrollBar {}

        ColumnLayout {
            id: column
            x: Theme.pagePadding
            y: Theme.pagePadding
            width: flick.width - Theme.pagePadding * 2
            spacing: Theme.space4

            Toolbar {
                Layout.fillWidth: true
                FilterChip { text: "Overdue"; tone: "overdue"; count: 7; checked: true }
                FilterChip { text: "Due soon"; tone: "soon"; count: 12 }
                FilterChip { text: "On track"; tone: "ok"; count: 1023 }
                FilterChip { text: "Disabled"; enabled: false }
                ToolbarSeparator {}
                DropdownButton {
                    label: "All kinds"
                    iconName: "funnel-simple"
                    value: root.chosen
                    options: [{ value: "all", text: "All kinds" }, { value: "planned", text: "Planned Maintenance" }, { value: "squawk", text: "Deficiency / Squawk" }]
                    onPicked: (value) => root.chosen = value
                }
                Chip { text: "Group by category"; iconName: "rows" }
                end: LinkButton { text: "How task status is determined"; iconName: "question"; onClicked: App.post("openStatusHelp") }
            }

            RowLayout {
                spacing: Theme.space4
                Layout.fillWidth: true
                Card {
                    title: "Buttons"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Flow {
                        spacing: Theme.space2
                        Layout.fillWidth: true
                        PrimaryButton { text: "Mark complete & log"; iconName: "check" }
                        PrimaryButton { text: "Saving"; busy: true }
                        PrimaryButton { text: "Disabled"; enabled: false }
                        SecondaryButton { text: "Meters"; iconName: "gauge" }
                        SecondaryButton { text: "Disabled"; enabled: false }
                        DangerButton { text: "Delete"; iconName: "trash" }
                        IconButton { iconName: "bell-z"; outlined: true; tip: "Snooze" }
                        IconButton { iconName: "pencil-simple"; outlined: true; tip: "Edit" }
                        IconButton { iconName: "dots-three"; tip: "More" }
                        LinkButton { text: "Open board" }
                    }
                }
                Card {
                    title: "Status"
                    note: "· word and colour"
                    linkText: "All"
                    Layout.preferredWidth: 360
                    Layout.fillHeight: true
                    Flow {
                        spacing: Theme.space2
                        Layout.fillWidth: true
                        StatusBadge { text: "Overdue"; tone: "overdue" }
                        StatusBadge { text: "Due soon"; tone: "soon" }
                        StatusBadge { text: "On track"; tone: "ok" }
                        StatusBadge { text: "Snoozed" }
                        StatusBadge { text: "Signed"; tone: "accent" }
                        CountBadge { count: 7; meaning: "overdue" }
                        CountBadge { count: 12; tone: "soon"; meaning: "due soon" }
                    }
                    ProgressLine { value: 0.92; tone: "soon"; Layout.fillWidth: true }
                    ProgressLine { value: 0.55; tone: "ok"; Layout.fillWidth: true }
                    ProgressLine { value: 1.4; tone: "overdue"; Layout.fillWidth: true }
                }
            }

            Card {
                title: "Fields"
                Layout.fillWidth: true
                FieldRow {
                    TextInputField { label: "Completed by (optional)"; text: "L. Marchetti"; trailingIcon: "users"; trailingTip: "Pick a crew member"; Layout.fillWidth: true }
                    NumberField { label: "Labor cost (optional)"; text: "186.00"; unit: "USD"; decimals: 2; Layout.fillWidth: true }
                    DateField { label: "Done on"; date: root.day; withTime: true; onPicked: (date) => root.day = date; Layout.fillWidth: true }
                    ComboField {
                        label: "Category"
                        required: true
                        value: "engine"
                        options: [{ value: "engine", text: "Engine", icon: "engine.combustion.fill" }, { value: "hull", text: "Hull", icon: "ferry.fill" }]
                        Layout.fillWidth: true
                    }
                }
                FieldRow {
                    TextInputField { label: "Title"; required: true; message: "Give the task a title."; placeholder: "e.g. Engine oil & filter change"; Layout.fillWidth: true }
                    NumberField { label: "Engine 1"; text: "4,812.9"; unit: "hrs"; decimals: 1; hint: "Current: 4812.4 hrs"; Layout.fillWidth: true }
                    TextInputField { label: "A label of forty characters, which is long"; text: "A vessel with a name of forty characters"; readOnly: true; Layout.fillWidth: true }
                    TextInputField { label: "Disabled"; text: "Not for now"; enabled: false; message: "Lower than the current reading: the meter stays."; tone: "soon"; Layout.fillWidth: true }
                }
                TextAreaField { label: "Technician notes"; placeholder: "What was done, what was found"; Layout.fillWidth: true }
                RowLayout {
                    spacing: Theme.space6
                    CheckField { text: "Has a generator"; checked: true }
                    CheckField { text: "Partly"; tristate: true; checkState: Qt.PartiallyChecked }
                    CheckField { text: "Unchecked" }
                    SwitchField { text: "Group by category"; hint: "Headings fold."; checked: true }
                    SearchField { placeholder: "Search everything"; keyHint: "Ctrl K" }
                }
            }

            Card {
                title: "A record’s form"
                note: form.dirty ? "· changed" : "· as stored"
                Layout.fillWidth: true
                SampleVesselForm { id: form }
                FieldRow {
                    Field { form: form; name: "name" }
                    Field { form: form; name: "type" }
                    Field { form: form; name: "lengthFeet" }
                    Field { form: form; name: "engineHoursUpdatedAt"; label: "Read on" }
                }
                FieldRow {
                    Field { form: form; name: "numberOfEngines" }
                    Field { form: form; name: "engineHours" }
                    Field { form: form; name: "hasGenerator"; Layout.alignment: Qt.AlignBottom }
                    Field { form: form; name: "notes"; rows: 2 }
                }
            }

            ErrorBanner { title: "The disk is full"; text: "Your last change is kept here and is saved as soon as there is room. Free some space on this computer."; actionText: "Try again"; Layout.fillWidth: true }
            ErrorBanner { tone: "soon"; text: "This store was written by a newer program and is opened for reading only."; Layout.fillWidth: true }

            RowLayout {
                spacing: Theme.space4
                Layout.fillWidth: true
                Card {
                    title: "Work done"
                    note: "· last 12 months"
                    linkText: "Service history"
                    Layout.fillWidth: true
                    BarChart {
                        bars: ["Dec", "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov"].map((label, i) => ({ label: label, value: [5, 7, 8, 9, 6, 4, 3, 4, 5, 0, 8, 6][i] }))
                        unit: "services"
                        Layout.fillWidth: true
                    }
                }
                Card {
                    title: "Reading"
                    Layout.preferredWidth: 300
                    Layout.fillHeight: true
                    RowLayout {
                        Fact { label: "Due at"; value: "4,818.6 h · Engine 1" }
                        Fact { label: "Now"; value: "4,812.4 h"; note: "updated yesterday" }
                    }
                    Sparkline { values: [3, 5, 4, 8, 7, 9, 12]; meaning: "Hours run" }
                }
            }

            DataTable {
                name: "Tasks"
                Layout.fillWidth: true
                implicitHeight: 300
                sortKey: "due"
                selectedId: 2
                model: GroupedRows { source: null }
                emptyTitle: "No tasks here"
                emptyText: "Tasks that fall due appear on this board."
                emptyAction: "New task"
                emptyActionIcon: "plus"
                TableColumn { title: "Task"; role: "title"; sortKey: "name"; share: 2; strong: true }
                TableColumn { title: "Status"; role: "status"; sortKey: "status"; width: 100 }
                TableColumn { title: "Due"; role: "due"; sortKey: "due"; width: 160 }
            }
            DataTable {
                name: "Parts"
                Layout.fillWidth: true
                implicitHeight: 37 + 3 * Theme.rowHeight + 2
                idRole: "key"
                selectedId: 2
                model: ListModel {
                    ListElement { key: 1; title: "Generator oil & filter change"; second: "Generator · Gen 1"; due: "12.4 h past"; status: "Overdue"; tone: "overdue"; used: 1.1 }
                    ListElement { key: 2; title: "Raw water impeller replacement"; second: "Engine · Engine 1"; due: "in 6.2 h"; status: "Due soon"; tone: "soon"; used: 0.94 }
                    ListElement { key: 3; title: "EPIRB battery & registration check with the flag state's office"; second: "Safety"; due: "12 Dec"; status: "On track"; tone: "ok"; used: 0.6 }
                }
                TableColumn { title: "Task"; role: "title"; sortKey: "name"; share: 2; cell: Component { TwoLineCell { text: row.title; second: row.second } } }
                TableColumn { title: "Status"; width: 100; cell: Component { BadgeCell { text: row.status; tone: row.tone } } }
                TableColumn { title: "Due"; role: "due"; width: 140 }
                TableColumn { title: "Interval used"; width: 130; cell: Component { ProgressCell { value: row.used; tone: row.tone } } }
            }

            ListDetail {
                Layout.fillWidth: true
                implicitHeight: 220
                detailTitle: "Raw water impeller replacement"
                list: Card { title: "A list"; anchors.fill: parent }
                detail: [
                    AppText { text: "Raw water impeller replacement"; variant: "subtitle"; wrapMode: Text.Wrap; Layout.fillWidth: true },
                    AppText { text: "Carry a spare on board"; color: Theme.mute; Layout.fillWidth: true }
                ]
            }

            RowLayout {
                spacing: Theme.space4
                Layout.fillWidth: true
                Card {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 400
                    EmptyState { icon: "wrench"; title: "No maintenance tasks yet"; text: "Fill the programme from the template library, or add a task of your own."; actionText: "Template library"; secondText: "New task"; Layout.fillWidth: true }
                }
                Item {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 200
                    Layout.preferredHeight: 180
                    BusyState { anchors.fill: parent; running: true; shown: true; text: "Reading 100,000 records…" }
                }
            }
            UndoBar { text: "“Fuel filter replacement” deleted" }
            Toast { text: "Saved to Documents/work-list.pdf"; tone: "ok" }
        }
    }

    ConfirmDialog {
        id: confirm
        title: "Delete M/Y Meridian?"
        text: "Its 214 tasks, 1,032 service log entries and all photos are deleted with it. This cannot be undone."
    }
    FormSheet {
        id: sheet
        title: "Mark complete & log"
        subtitle: "Raw water impeller replacement · M/Y Meridian"
        actionText: "Complete & log"
        footNote: "Next due: 5,312.9 h or 21 Nov 2027"
        onSaveRequested: close()
        FieldRow {
            DateField { label: "Done on"; date: root.day; withTime: true; onPicked: (date) => root.day = date; Layout.fillWidth: true }
            TextInputField { label: "Completed by (optional)"; Layout.fillWidth: true }
            NumberField { label: "Labor cost (optional)"; unit: "USD"; decimals: 2; Layout.fillWidth: true }
        }
        TextAreaField { label: "Technician notes"; onEdited: sheet.dirty = true; Layout.fillWidth: true }
    }
}
