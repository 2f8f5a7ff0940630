import QtQuick
import QtQuick.Layouts
import Thalvorn

// "Mark complete & log": one sheet with all that is told of a finished job.
FormSheet {
    id: root

    required property string taskId
    readonly property var form: Maintenance.completeTask(taskId)

    title: form ? form.title : ""
    subtitle: form ? form.subtitle : ""
    actionText: "Complete & log"
    footNote: form ? form.nextDue : ""
    sheetWidth: Theme.sheetMax
    dirty: form ? form.dirty : false
    error: form ? form.error : "This task was deleted meanwhile."
    canSave: form !== null
    onSaveRequested: if (form.save()) close()

    FieldRow {
        DateField {
            label: "Done on"
            withTime: true
            optional: false
            date: root.form?.doneOn
            fault: root.form?.doneOnMessage ?? ""
            onPicked: (date) => { if (date !== undefined) root.form.doneOn = date; }
        }
        PersonField {
            label: "Completed by (optional)"
            text: root.form?.completedBy ?? ""
            people: root.form?.people ?? []
            onEdited: (text) => root.form.completedBy = text
        }
        TextInputField {
            label: "Labor cost (optional)"
            unit: root.form?.currency ?? ""
            text: root.form?.labor ?? ""
            message: root.form?.laborMessage ?? ""
            inputMethodHints: Qt.ImhFormattedNumbersOnly
            onEdited: (text) => root.form.labor = text
        }
    }
    TextAreaField {
        label: "Technician notes"
        placeholder: "What was done, what was found"
        text: root.form?.notes ?? ""
        rows: 3
        onEdited: (text) => root.form.notes = text
    }
    ComboField {
        visible: options.length > 0
        label: "Equipment serviced"
        placeholder: "None"
        options: root.form?.equipment ?? []
        value: root.form?.equipmentId ?? ""
        onPicked: (value) => root.form.equipmentId = value
    }
    ColumnLayout {
        visible: (root.form?.meters.length ?? 0) > 0
        spacing: Theme.space2
        Layout.fillWidth: true
        ColumnLayout {
            spacing: 1
            AppText { text: "Meter readings"; variant: "medium"; Layout.fillWidth: true }
            AppText {
                text: "Update meter readings if you took new measurements during service. Empty fields are skipped — meters only count up."
                variant: "small"
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
        }
        FieldRow {
            minimumColumn: 130
            Repeater {
                model: root.form?.meters ?? []
                delegate: MeterInput {
                    required property var modelData
                    meter: modelData
                    brief: true
                }
            }
        }
        Repeater {
            model: root.form?.meters ?? []
            delegate: RowLayout {
                id: remark
                required property var modelData
                visible: modelData.message.length > 0
                spacing: 5
                Layout.fillWidth: true
                Icon { name: remark.modelData.tone === "overdue" ? "warning-circle" : "info"; size: 14; color: remarkText.color; Layout.alignment: Qt.AlignTop; Layout.topMargin: 1 }
                AppText {
                    id: remarkText
                    text: remark.modelData.message
                    variant: "small"
                    color: Theme.statusInk(remark.modelData.tone)
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                    Accessible.role: Accessible.AlertMessage
                }
            }
        }
    }
    PartsTable { form: root.form; Layout.fillWidth: true }
    RowLayout {
        spacing: Theme.space3
        Layout.fillWidth: true
        AppText { text: "Photos (optional)"; variant: "smallMedium"; color: Theme.ink }
        PhotoStrip {
            editable: true
            photos: root.form?.photos ?? []
            onAdded: (pictures) => root.form.addPhotos(pictures)
            onRemoved: (position) => root.form.removePhoto(position)
            Layout.fillWidth: true
        }
    }
}
