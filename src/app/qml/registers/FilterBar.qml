import QtQuick
import Thalvorn

// The filters of a register's list; with records ticked, what can be done with them.
Toolbar {
    id: root

    required property var list
    required property var register
    readonly property var filters: list.filters
    readonly property int chosen: list.chosenCount
    signal cleared()
    signal printRequested(string paper)
    signal exportRequested()
    signal deleteRequested()

    CheckField {
        text: root.chosen > 0 ? Format.number(root.chosen) + " selected" : "Select all"
        tristate: true
        checkState: root.list.allChosen
        enabled: root.list.count > 0
        nextCheckState: () => checkState === Qt.Checked ? Qt.Unchecked : Qt.Checked
        onClicked: root.list.chooseAll(checkState === Qt.Checked)
    }
    ToolbarSeparator {}
    PeriodButton {
        visible: root.chosen === 0
        first: root.list.firstDay
        last: root.list.lastDay
        onPicked: (first, last) => root.list.setDays(first, last)
    }
    // The delegates stay while their values change, so that a menu stays open.
    Repeater {
        model: root.filters.length
        delegate: Loader {
            id: slot
            required property int index
            readonly property var filter: root.filters[index] ?? ({ kind: "", values: [], options: [], label: "", key: "" })
            visible: root.chosen === 0
            sourceComponent: filter.kind === "choice" ? one : filter.kind === "choices" ? several : filter.kind === "text" ? words : null

            Component {
                id: one
                DropdownButton {
                    label: slot.filter.label
                    iconName: "funnel-simple"
                    value: slot.filter.values[0] ?? ""
                    options: [{ value: "", text: slot.filter.label + ": all" }].concat(slot.filter.options)
                    text: slot.filter.values.length > 0 && chosen ? chosen.text : slot.filter.label
                    checked: slot.filter.values.length > 0
                    onPicked: (value) => root.list.narrow(slot.filter.key, value ? [value] : [])
                }
            }
            Component {
                id: several
                ChoicesButton {
                    label: slot.filter.label
                    options: slot.filter.options
                    values: slot.filter.values
                    onPicked: (values) => root.list.narrow(slot.filter.key, values)
                }
            }
            Component {
                id: words
                WordsChip {
                    label: slot.filter.label
                    words: slot.filter.values[0] ?? ""
                    onEdited: (words) => root.list.narrow(slot.filter.key, words ? [words] : [])
                }
            }
        }
    }
    Chip { visible: root.chosen === 0 && root.list.filtered; text: "Clear filters"; iconName: "x"; onClicked: { root.cleared(); root.list.clearFilters(); } }

    Repeater {
        model: root.chosen > 0 ? root.register.papers : []
        delegate: Chip {
            required property var modelData
            text: modelData.text
            iconName: modelData.icon
            onClicked: root.printRequested(modelData.value)
        }
    }
    Chip { visible: root.chosen > 0; text: "Export as CSV…"; iconName: "file-csv"; onClicked: root.exportRequested() }
    Chip { visible: root.chosen > 0 && !App.readOnly; text: "Delete…"; iconName: "trash"; onClicked: root.deleteRequested() }
    Chip { visible: root.chosen > 0; text: "Clear selection"; iconName: "x"; onClicked: root.list.clearChosen() }
}
