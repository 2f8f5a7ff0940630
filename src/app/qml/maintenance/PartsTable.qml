import QtQuick
import QtQuick.Layouts
import Thalvorn

// The parts used in a service, filled in line by line.
ColumnLayout {
    id: root

    property var form: null
    readonly property var parts: form?.parts ?? []

    spacing: Theme.space2

    function add() {
        const at = form.addPart();
        Qt.callLater(() => { lines.itemAt(at)?.forceFocus(); });
    }

    RowLayout {
        Layout.fillWidth: true
        AppText { text: "Parts used"; variant: "medium"; Layout.fillWidth: true }
        LinkButton { visible: root.parts.length > 0; text: "Add part"; iconName: "plus"; onClicked: root.add() }
    }
    RowLayout {
        visible: root.parts.length === 0
        spacing: Theme.space3
        Layout.fillWidth: true
        AppText { text: "No parts logged yet"; variant: "small" }
        LinkButton { text: "Add your first part"; iconName: "plus"; onClicked: root.add() }
        Item { Layout.fillWidth: true }
    }
    RowLayout {
        visible: root.parts.length > 0
        spacing: Theme.space2
        Layout.fillWidth: true
        AppText { text: "Part"; variant: "small"; Layout.fillWidth: true; Layout.preferredWidth: 30 }
        AppText { text: "Part number"; variant: "small"; Layout.fillWidth: true; Layout.preferredWidth: 20 }
        AppText { text: "Quantity"; variant: "small"; horizontalAlignment: Text.AlignRight; Layout.preferredWidth: 90 }
        AppText { text: root.form?.currency ? "Cost (" + root.form.currency + ")" : "Cost"; variant: "small"; horizontalAlignment: Text.AlignRight; Layout.preferredWidth: 110 }
        Item { Layout.preferredWidth: 32 }
    }
    Repeater {
        id: lines
        model: root.parts
        delegate: ColumnLayout {
            id: line
            required property var modelData
            required property int index
            spacing: 2
            Layout.fillWidth: true
            function forceFocus() {
                nameField.forceFocus();
            }
            RowLayout {
                spacing: Theme.space2
                Layout.fillWidth: true
                TextInputField {
                    id: nameField
                    placeholder: "e.g. Impeller kit"
                    text: line.modelData.name
                    input.Accessible.name: "Part"
                    onEdited: (text) => line.modelData.name = text
                    Layout.preferredWidth: 30
                }
                TextInputField {
                    text: line.modelData.number
                    input.Accessible.name: "Part number"
                    onEdited: (text) => line.modelData.number = text
                    Layout.preferredWidth: 20
                }
                TextInputField {
                    text: line.modelData.quantity
                    alignRight: true
                    input.Accessible.name: "Quantity"
                    onEdited: (text) => line.modelData.quantity = text
                    Layout.fillWidth: false
                    Layout.preferredWidth: 90
                }
                TextInputField {
                    text: line.modelData.cost
                    alignRight: true
                    input.Accessible.name: "Cost"
                    onEdited: (text) => line.modelData.cost = text
                    onAccepted: root.add()
                    Layout.fillWidth: false
                    Layout.preferredWidth: 110
                }
                IconButton {
                    iconName: "trash"
                    tip: "Take this part out"
                    implicitWidth: 32
                    onClicked: root.form.removePart(line.index)
                }
            }
            AppText { visible: text.length > 0; text: line.modelData.message; variant: "small"; color: Theme.overdue; Layout.fillWidth: true; Accessible.role: Accessible.AlertMessage }
        }
    }
}
