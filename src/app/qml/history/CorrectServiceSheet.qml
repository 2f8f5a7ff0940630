import QtQuick
import QtQuick.Layouts
import Thalvorn

// Puts a service right. What it said before is kept with the reason.
FormSheet {
    id: root

    property string serviceId
    readonly property var form: ServiceHistory.correction(serviceId)
    readonly property bool changed: form !== null && form.revision >= 0 && form.anyChange

    title: "Correct service"
    subtitle: form ? form.text("taskTitle") : "This service was deleted meanwhile."
    actionText: "Save correction"
    canSave: changed
    dirty: changed || (form !== null && form.reason.length > 0)
    error: form ? form.error : ""
    footNote: "The earlier text stays in the record."
    sheetWidth: 820
    onSaveRequested: if (form.save()) close()

    FieldRow {
        Field { form: root.form; name: "taskTitle" }
        Field { form: root.form; name: "category" }
        Field { form: root.form; name: "kind" }
    }
    FieldRow {
        Field { form: root.form; name: "completedDate" }
        Field { form: root.form; name: "engineHoursAtService" }
        Field { form: root.form; name: "completedBy" }
        Field { form: root.form; name: "cost"; unit: ServiceHistory.model.costs.currency ?? "" }
    }
    Field { form: root.form; name: "technicianNotes"; rows: 3 }

    RowLayout {
        Layout.fillWidth: true
        AppText { text: "Parts used"; variant: "strong"; Layout.fillWidth: true }
        LinkButton { text: "Add part"; iconName: "plus"; onClicked: root.form.addPart() }
    }
    AppText { visible: !root.form || root.form.parts.length === 0; text: "No parts logged yet"; variant: "small" }
    Repeater {
        model: root.form ? root.form.parts : []
        delegate: RowLayout {
            id: line
            required property var modelData
            required property int index
            spacing: Theme.space2
            Layout.fillWidth: true
            Field { form: line.modelData; name: "name"; Layout.preferredWidth: 260 }
            Field { form: line.modelData; name: "partNumber"; Layout.preferredWidth: 150 }
            Field { form: line.modelData; name: "quantity"; Layout.preferredWidth: 90 }
            Field { form: line.modelData; name: "cost"; Layout.preferredWidth: 110 }
            IconButton { iconName: "trash"; tip: "Remove this part"; Layout.alignment: Qt.AlignTop; Layout.topMargin: 22; onClicked: root.form.removePart(line.index) }
        }
    }

    TextInputField {
        label: "Reason for the correction"
        required: true
        placeholder: "e.g. Wrong meter reading"
        message: root.form && root.form.revision >= 0 ? root.form.reasonMessage : ""
        onEdited: (text) => root.form.reason = text
        Layout.fillWidth: true
    }
}
