import QtQuick
import QtQuick.Layouts
import Thalvorn

// The catalogue of ready-made tasks: choose by category or search, say from when they count, add them to the vessel.
Page {
    id: root

    title: "Template Library"
    note: TemplateLibrary.vesselName ? "for " + TemplateLibrary.vesselName : ""
    searchPlaceholder: "Search templates…"
    commands: ["newRecord"]
    onSearchEdited: (text) => TemplateLibrary.search = text
    onSearchLeft: table.focusList()
    onOpened: (args) => {
        if (!args.highlight)
            return;
        root.clearSearch();
        TemplateLibrary.category = "";
        Qt.callLater(() => table.showId(args.highlight));
    }
    help: Component {
        AppText {
            text: "Choose the jobs your vessel needs; Space or Enter ticks a line. “Select All” leaves out what is among your tasks already and jobs on machinery she does not have. A template is copied: later changes of the catalogue never touch your tasks. The intervals are usual values, so check the maker’s manual."
            wrapMode: Text.Wrap
        }
    }
    Binding { target: TemplateLibrary; property: "active"; value: root.current && root.visible }

    RowLayout {
        anchors.fill: parent
        spacing: Theme.space4

        ColumnLayout {
            spacing: Theme.space3
            Layout.fillWidth: true
            Layout.fillHeight: true
            Toolbar {
                Layout.fillWidth: true
                CheckField {
                    text: "Select All"
                    tristate: true
                    checkState: TemplateLibrary.allChosen
                    enabled: TemplateLibrary.count > 0
                    nextCheckState: () => checkState === Qt.Checked ? Qt.Unchecked : Qt.Checked
                    onClicked: TemplateLibrary.chooseAll(checkState === Qt.Checked)
                }
                ToolbarSeparator {}
                DropdownButton { label: "All Categories"; iconName: "funnel-simple"; value: TemplateLibrary.category; options: TemplateLibrary.categories; onPicked: (value) => TemplateLibrary.category = value }
                end: AppText { text: TemplateLibrary.count + " templates"; variant: "small" }
            }
            DataTable {
                id: table
                Layout.fillWidth: true
                Layout.fillHeight: true
                name: "Templates"
                focus: true
                model: GroupedRows { source: TemplateLibrary; groupRole: "category" }
                emptyIcon: "stack"
                emptyTitle: "No templates match"
                emptyText: "Try other words, or another category."
                onActivated: (row) => TemplateLibrary.toggle(row.id)
                TableColumn {
                    width: 22
                    cell: Component {
                        TableCell {
                            CheckField {
                                anchors.verticalCenter: parent.verticalCenter
                                width: 22
                                focusPolicy: Qt.NoFocus
                                checked: parent.row?.chosen === true
                                Accessible.name: "Select " + (parent.row?.title ?? "")
                                onToggled: TemplateLibrary.toggle(parent.row?.id)
                            }
                        }
                    }
                }
                TableColumn { title: "Task"; role: "title"; share: 2.2; minimum: 190; cell: Component { TwoLineCell { text: row?.title ?? ""; second: row?.notes ?? "" } } }
                TableColumn { title: "Interval"; width: 204; cell: Component { TwoLineCell { variant: "body"; text: row?.interval ?? ""; second: row?.proposed ?? "" } } }
                TableColumn { width: 108; hideBelow: 520; cell: Component { BadgeCell { text: row?.remark ?? ""; tone: row?.remark === "Not fitted" ? "soon" : "" } } }
            }
        }

        DetailPane {
            Layout.fillHeight: true
            Layout.preferredWidth: Theme.detailWidth
            title: "Add to My Tasks"

            AppText { text: TemplateLibrary.chosenText; variant: "subtitle"; Layout.fillWidth: true }
            AppText { visible: text.length > 0; text: TemplateLibrary.chosenWarning; variant: "small"; color: Theme.soon; wrapMode: Text.Wrap; Layout.fillWidth: true }
            ComboField {
                label: "Count from"
                options: TemplateLibrary.starts
                value: TemplateLibrary.from
                onPicked: (value) => TemplateLibrary.from = value
                Layout.fillWidth: true
            }
            DateField {
                label: "Start date:"
                visible: TemplateLibrary.from !== "lastDone"
                date: TemplateLibrary.startDate
                hint: TemplateLibrary.from === "notKnown" ? "What was done before is not known, so the tasks fall due on this day." : "A task first falls due one interval after this day."
                onPicked: (date) => TemplateLibrary.startDate = date
                Layout.fillWidth: true
            }
            DateField {
                label: "Last done on"
                visible: TemplateLibrary.from === "lastDone"
                optional: true
                date: TemplateLibrary.lastDone
                hint: "Leave it empty when it is not known: then today counts."
                onPicked: (date) => TemplateLibrary.lastDone = date
                Layout.fillWidth: true
            }
            NumberField {
                label: "Last done at"
                visible: TemplateLibrary.from === "lastDone"
                unit: "hrs"
                decimals: 1
                from: 0
                text: TemplateLibrary.lastDoneHours
                message: TemplateLibrary.lastDoneHoursMessage
                hint: "Leave it empty to count from what the meter shows."
                onEdited: (text) => TemplateLibrary.lastDoneHours = text
                Layout.fillWidth: true
            }
            PrimaryButton {
                text: "Add to My Tasks"
                writes: true
                iconName: "plus"
                enabled: TemplateLibrary.chosenCount > 0
                Layout.fillWidth: true
                onClicked: TemplateLibrary.addToTasks()
            }
            LinkButton { visible: TemplateLibrary.chosenCount > 0; text: "Clear the selection"; onClicked: TemplateLibrary.clearChoice() }
            ColumnLayout {
                visible: TemplateLibrary.firstDue.length > 0
                spacing: Theme.space2
                Layout.fillWidth: true
                Divider { Layout.fillWidth: true; Layout.bottomMargin: Theme.space1 }
                AppText { text: "First due"; variant: "smallStrong"; color: Theme.ink }
                Repeater {
                    model: TemplateLibrary.firstDue
                    delegate: ColumnLayout {
                        id: due
                        required property var modelData
                        spacing: 0
                        Layout.fillWidth: true
                        AppText { text: due.modelData.title; Layout.fillWidth: true }
                        AppText { text: due.modelData.due; variant: "small"; Layout.fillWidth: true }
                    }
                }
                AppText { visible: TemplateLibrary.chosenCount > TemplateLibrary.firstDue.length; text: "and " + (TemplateLibrary.chosenCount - TemplateLibrary.firstDue.length) + " more"; variant: "small" }
            }
            Divider { Layout.fillWidth: true }
            RowLayout {
                spacing: Theme.space2
                Layout.fillWidth: true
                Icon { name: "book-open"; color: Theme.mute; Layout.alignment: Qt.AlignTop }
                AppText { text: "These are usual intervals. Check the maker’s manual: it comes first."; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
            }
        }
    }
    onPosted: (name) => { if (name === "newRecord") TemplateLibrary.addToTasks(); }
}
