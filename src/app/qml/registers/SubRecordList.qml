import QtQuick
import QtQuick.Layouts
import Thalvorn

// The records inside a record, a line of fields each: guests, roster. `fields` names them in order with their shares:
// [{name, share, people?}]; one with `people` ([{name, detail}]) is typed or picked.
ColumnLayout {
    id: root

    required property string title
    property var list: null
    property var fields: []
    property string addText: "Add"
    property string emptyText
    property string hint
    readonly property var forms: list ? list.forms : []

    spacing: Theme.space2

    function add() {
        const at = list.add();
        Qt.callLater(() => lines.itemAt(at)?.forceFocus());
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.topMargin: Theme.space2
        AppText { text: root.title; variant: "strong"; Accessible.role: Accessible.Heading }
        AppText { visible: root.forms.length > 0; text: Format.number(root.forms.length); variant: "small"; Layout.fillWidth: true }
        Item { visible: root.forms.length === 0; Layout.fillWidth: true }
        LinkButton { text: root.addText; iconName: "plus"; enabled: root.list !== null; onClicked: root.add() }
    }
    AppText { visible: root.forms.length === 0; text: root.emptyText; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
    Repeater {
        id: lines
        model: root.forms
        delegate: RowLayout {
            id: line
            required property var modelData
            required property int index
            spacing: Theme.space2
            Layout.fillWidth: true
            function forceFocus() {
                cells.itemAt(0)?.forceFocus();
            }
            Repeater {
                id: cells
                model: root.fields
                delegate: Loader {
                    id: cell
                    required property var modelData
                    function forceFocus() {
                        item.forceFocus();
                    }
                    Layout.fillWidth: true
                    Layout.preferredWidth: (modelData.share ?? 1) * 100
                    Layout.alignment: Qt.AlignTop
                    sourceComponent: modelData.people ? person : plain
                    Component {
                        id: plain
                        Field { form: line.modelData; name: cell.modelData.name; label: "" }
                    }
                    Component {
                        id: person
                        PersonField {
                            readonly property int revision: line.modelData.revision
                            readonly property var facts: line.modelData.facts(cell.modelData.name)
                            placeholder: facts.placeholder || facts.label
                            people: cell.modelData.people
                            input.Accessible.name: facts.label
                            text: revision >= 0 ? line.modelData.text(cell.modelData.name) : ""
                            message: revision >= 0 ? line.modelData.message(cell.modelData.name) : ""
                            onEdited: (text) => line.modelData.setText(cell.modelData.name, text)
                            onAccepted: root.add()
                        }
                    }
                }
            }
            IconButton {
                iconName: "trash"
                tip: "Take this line out"
                implicitWidth: 32
                Layout.alignment: Qt.AlignTop
                onClicked: root.list.remove(line.index)
            }
        }
    }
    AppText { visible: text.length > 0 && root.forms.length > 0; text: root.hint; variant: "small"; Layout.fillWidth: true }
}
