import QtQuick
import QtQuick.Layouts
import Thalvorn

// One record of a register to read: every field with its label, and what the register adds below.
ColumnLayout {
    id: root

    property var page: null
    property string recordId
    property string editText: "Edit…"
    property var hidden: []        // fields that stand elsewhere
    property string subtitle
    readonly property var register: page ? page.register : null
    readonly property var record: register && register.revision >= 0 && recordId ? register.detail(recordId) : ({})
    readonly property bool shown: (record.id ?? "") !== ""
    readonly property var facts: (record.facts ?? []).filter((fact) => !hidden.includes(fact.key) && !fact.multiline)
    readonly property var texts: (record.facts ?? []).filter((fact) => !hidden.includes(fact.key) && fact.multiline && fact.value)
    default property alias content: more.data

    spacing: Theme.space3

    EmptyState {
        visible: !root.shown
        icon: root.page ? root.page.icon : ""
        title: "Nothing chosen"
        text: "Choose a record to read it here."
        Layout.fillWidth: true
        Layout.topMargin: Theme.space8
    }
    AppText { visible: root.shown; text: root.record.title ?? ""; variant: "subtitle"; wrapMode: Text.Wrap; Layout.fillWidth: true }
    AppText { visible: root.shown && text.length > 0; text: root.subtitle; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
    RowLayout {
        visible: root.shown
        spacing: Theme.space2
        SecondaryButton { visible: root.page !== null && root.page.adds; text: root.editText; writes: true; iconName: "pencil-simple"; onClicked: root.page.edit(root.recordId) }
        Repeater {
            model: root.register ? root.register.recordPapers : []
            delegate: IconButton {
                required property var modelData
                iconName: modelData.icon
                outlined: true
                tip: modelData.text
                onClicked: root.register.print(modelData.value, root.recordId)
            }
        }
        IconButton { visible: root.page !== null && root.page.adds; iconName: "trash"; outlined: true; writes: true; tip: "Delete"; onClicked: root.page.remove(root.recordId) }
    }
    // A grid of plain places: fields come and go with the record, also while nothing is shown.
    Grid {
        id: grid
        visible: root.shown
        columns: root.width > 620 ? 4 : 2
        columnSpacing: Theme.space3
        rowSpacing: Theme.space3
        Layout.fillWidth: true
        Repeater {
            model: root.facts.length
            delegate: Fact {
                required property int index
                readonly property var fact: root.facts[index] ?? ({ label: "", value: "", note: "" })
                // Not of the grid's own width, which follows its cells until the layout has set it.
                width: (root.width - grid.columnSpacing * (grid.columns - 1)) / grid.columns
                label: fact.label
                value: fact.value
                note: fact.note
            }
        }
    }
    Repeater {
        model: root.texts
        delegate: ColumnLayout {
            id: passage
            required property var modelData
            spacing: 1
            Layout.fillWidth: true
            AppText { text: passage.modelData.label; variant: "small" }
            AppText { text: passage.modelData.value; wrapMode: Text.Wrap; Layout.fillWidth: true }
        }
    }
    ColumnLayout {
        id: more
        visible: root.shown && children.length > 0
        spacing: Theme.space3
        Layout.fillWidth: true
    }
}
