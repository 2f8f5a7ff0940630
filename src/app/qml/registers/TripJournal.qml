import QtQuick
import QtQuick.Layouts
import Thalvorn

// The trip journal of a passage in time order, and the line that is being written.
ColumnLayout {
    id: root

    property var register
    required property string recordId
    property var lines: []
    property string countText
    property bool writable: true
    readonly property string user: Registers.userName
    readonly property string authorKey: "shipsLog.author." + user
    property string author: App.recall(authorKey, user)
    property var begun: ({})   // texts begun, by the passage they were begun for
    property string writtenFor

    spacing: Theme.space2

    function add() {
        if (!entry.text.trim())
            return;
        if (register.addJournalLine(recordId, category.value, author, entry.text))
            entry.text = "";
        entry.forceFocus();
    }
    function signAs(name) {
        author = name;
        App.remember(authorKey, name);
    }
    onUserChanged: author = App.recall(authorKey, user)
    onRecordIdChanged: {
        begun[writtenFor] = entry.text;
        writtenFor = recordId;
        entry.text = begun[recordId] ?? "";
    }

    Divider { Layout.fillWidth: true; Layout.bottomMargin: Theme.space1 }
    RowLayout {
        Layout.fillWidth: true
        AppText { text: "Trip Journal"; variant: "smallStrong"; color: Theme.ink; Layout.fillWidth: true }
        AppText { text: root.countText; variant: "small" }
    }
    AppText { visible: root.lines.length === 0; text: "No journal entries yet"; variant: "small" }
    Repeater {
        model: root.lines
        delegate: RowLayout {
            id: line
            required property var modelData
            spacing: Theme.space2
            Layout.fillWidth: true
            ColumnLayout {
                spacing: 1
                Layout.fillWidth: true
                AppText { text: [line.modelData.time, line.modelData.category, line.modelData.author].filter((part) => part).join(" · "); variant: "small"; Layout.fillWidth: true }
                AppText { text: line.modelData.text; wrapMode: Text.Wrap; Layout.fillWidth: true }
            }
            IconButton {
                visible: root.writable
                writes: true
                iconName: "trash"
                tip: "Delete this entry"
                implicitWidth: 28
                implicitHeight: 28
                Layout.alignment: Qt.AlignTop
                onClicked: root.register.removeJournalLine(root.recordId, line.modelData.id)
            }
        }
    }
    ColumnLayout {
        visible: root.writable && !App.readOnly
        spacing: Theme.space2
        Layout.fillWidth: true
        TextAreaField {
            id: entry
            placeholder: "Add a journal entry…"
            rows: 2
            Layout.fillWidth: true
            Keys.onPressed: (event) => {
                if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && event.modifiers & Qt.ControlModifier) {
                    root.add();
                    event.accepted = true;
                }
            }
        }
        RowLayout {
            spacing: Theme.space2
            Layout.fillWidth: true
            ComboField {
                id: category
                options: root.register?.journalCategories ?? []
                value: options[0]?.value
                onPicked: (chosen) => value = chosen
                Layout.fillWidth: true
                Layout.preferredWidth: 100
            }
            TextInputField {
                text: root.author
                placeholder: "Author"
                input.Accessible.name: "Author"
                trailingIcon: root.author ? "x" : ""
                trailingTip: "Clear author"
                onTrailingClicked: { replaceText(""); root.signAs(""); }
                onEdited: (text) => root.signAs(text)
                Layout.fillWidth: true
                Layout.preferredWidth: 100
            }
        }
        SecondaryButton { text: "Add to the journal"; iconName: "plus"; tip: "Ctrl+Enter"; enabled: entry.text.trim().length > 0; Layout.alignment: Qt.AlignRight; onClicked: root.add() }
    }
}
