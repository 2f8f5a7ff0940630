import QtQuick
import QtQuick.Layouts
import Thalvorn

// The form of a register's record. Its fields stack in a column; what was entered before a crash is brought back.
FormSheet {
    id: root

    property string registerKey
    property string recordId
    property string newTitle: "New " + register.singular
    property string editTitle: "Edit " + register.singular
    readonly property var register: Registers.of(registerKey)
    readonly property var sheet: register.sheet(recordId)
    readonly property var form: sheet ? sheet.form : null

    title: sheet && sheet.isNew ? newTitle : editTitle
    subtitle: sheet === null ? (recordId ? "This record was deleted meanwhile." : "Choose a vessel first: the record belongs to one.") : register.vesselName
    actionText: sheet && sheet.isNew ? "Add" : "Save"
    canSave: sheet !== null
    dirty: sheet !== null && sheet.dirty
    error: sheet ? sheet.error : ""
    sheetWidth: 820
    onSaveRequested: {
        if (sheet.save())
            close();
        else
            focusField(sheet.firstWrong());
    }
    onLeft: if (sheet) sheet.discard()

    RowLayout {
        visible: root.sheet !== null && root.sheet.restored
        spacing: Theme.space3
        Layout.fillWidth: true
        Icon { name: "clock-counter-clockwise"; color: Theme.soon }
        AppText { text: "What you had entered and not saved was brought back."; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
        LinkButton { text: "Begin again without it"; onClicked: root.sheet.forgetDraft() }
    }
}
