import QtQuick
import QtQuick.Layouts
import Thalvorn

// One field of a record's form: `Field { form: f; name: "title" }`. Label, unit, entry, range, choices and messages come
// from the record's description; what is typed goes back into the form and stays on screen also when it is refused.
Loader {
    id: root

    property var form: null
    property string name
    property string label: facts.label ?? ""
    property string hint: facts.help ?? ""
    property int rows: 3
    property bool readOnly: false
    property string unit: facts.unit ?? ""
    property var options: facts.choices ?? []
    property var people: null  // [{name, detail}] makes a text one that can be picked as well as typed
    readonly property var facts: form && name ? form.facts(name) : ({})
    readonly property int revision: form ? form.revision : 0
    readonly property string message: revision >= 0 && form ? form.message(name) : ""
    readonly property string current: revision >= 0 && form ? form.text(name) : ""

    function forceFocus() {
        if (item)
            item.forceFocus ? item.forceFocus() : item.forceActiveFocus(Qt.TabFocusReason);
    }

    Layout.fillWidth: true
    Layout.preferredWidth: 100
    Layout.alignment: Qt.AlignTop
    sourceComponent: {
        switch (facts.entry) {
        case "choice": return choice;
        case "yesno": return yesNo;
        case "multiline": return multiline;
        case "date":
        case "dateTime": return dateEntry;
        case "number": return number;
        case undefined: return null;
        default: return people ? person : line;
        }
    }

    Component {
        id: line
        TextInputField {
            label: root.label
            hint: root.hint
            message: root.message
            required: root.facts.required
            placeholder: root.facts.placeholder
            unit: root.unit
            readOnly: root.readOnly
            text: root.current
            echoMode: root.facts.sensitive ? TextInput.PasswordEchoOnEdit : TextInput.Normal
            inputMethodHints: root.facts.entry === "email" ? Qt.ImhEmailCharactersOnly : root.facts.entry === "phone" ? Qt.ImhDialableCharactersOnly
                              : root.facts.entry === "url" ? Qt.ImhUrlCharactersOnly : Qt.ImhNone
            onEdited: (text) => root.form.setText(root.name, text)
        }
    }
    Component {
        id: person
        PersonField {
            people: root.people
            label: root.label
            hint: root.hint
            message: root.message
            required: root.facts.required
            placeholder: root.facts.placeholder
            readOnly: root.readOnly
            text: root.current
            onEdited: (text) => root.form.setText(root.name, text)
        }
    }
    Component {
        id: number
        NumberField {
            label: root.label
            hint: root.hint
            message: root.message
            required: root.facts.required
            placeholder: root.facts.placeholder
            unit: root.unit
            decimals: root.facts.decimals
            from: root.facts.minimum
            to: root.facts.maximum
            readOnly: root.readOnly
            text: root.current
            onEdited: (text) => root.form.setText(root.name, text)
        }
    }
    Component {
        id: multiline
        TextAreaField {
            label: root.label
            hint: root.hint
            message: root.message
            required: root.facts.required
            placeholder: root.facts.placeholder
            readOnly: root.readOnly
            rows: root.rows
            text: root.current
            onEdited: (text) => root.form.setText(root.name, text)
        }
    }
    Component {
        id: choice
        ComboField {
            label: root.label
            hint: root.hint
            message: root.message
            required: root.facts.required
            readOnly: root.readOnly
            options: root.options
            value: root.current
            onPicked: (value) => root.form.setText(root.name, value)
        }
    }
    Component {
        id: yesNo
        CheckField {
            text: root.label
            hint: root.hint
            enabled: !root.readOnly
            checked: root.current === "true"
            onToggled: root.form.setText(root.name, checked ? "true" : "false")
        }
    }
    Component {
        id: dateEntry
        DateField {
            label: root.label
            hint: root.hint
            fault: root.message
            required: root.facts.required
            optional: root.facts.optional
            withTime: root.facts.entry === "dateTime"
            readOnly: root.readOnly
            date: root.revision >= 0 && root.form ? root.form.value(root.name) : undefined
            onPicked: (date) => root.form.setValue(root.name, date)
        }
    }
}
