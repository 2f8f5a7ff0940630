import QtQuick
import QtQuick.Layouts
import Thalvorn

// The form of a maintenance task, new or to be changed.
FormSheet {
    id: root

    property string taskId
    readonly property var form: taskId ? Maintenance.editTask(taskId) : Maintenance.newTask()
    readonly property bool byDate: form ? form.byDate : true
    readonly property bool byHours: form ? form.byHours : false
    readonly property bool planned: form ? form.planned : true

    title: taskId ? "Edit task" : "New task"
    subtitle: form ? form.vesselName : ""
    actionText: taskId ? "Save" : "Add task"
    error: form ? form.error : taskId ? "This task was deleted meanwhile." : "Add a vessel first."
    dirty: form ? form.dirty : false
    canSave: form !== null
    onSaveRequested: {
        if (!form.save()) {
            focusField(form.firstWrong());
            return;
        }
        close();
        if (!taskId)
            App.toast("Task added", "ok");
    }

    Field { form: root.form; name: "title" }
    FieldRow {
        Field { form: root.form; name: "category"; options: root.form?.categories ?? [] }
        Field { form: root.form; name: "kind" }
        Field { form: root.form; name: "priority" }
    }
    FieldRow {
        Field { form: root.form; name: "triggerType" }
        ColumnLayout {
            visible: root.byDate
            spacing: Theme.space1
            Layout.fillWidth: true
            Layout.preferredWidth: 100
            Layout.alignment: Qt.AlignTop
            Field { form: root.form; name: "dueDate" }
            LinkButton { visible: text.length > 0; text: root.form?.dateProposal ?? ""; onClicked: root.form.takeDateProposal() }
        }
        Field { visible: root.byDate; form: root.form; name: "recurringDays"; hint: root.form?.daysHint ?? ""; readOnly: !root.planned }
    }
    FieldRow {
        visible: root.byHours
        Field { form: root.form; name: "hourSource"; options: root.form?.hourSources ?? []; hint: root.form?.meterHint ?? "" }
        ColumnLayout {
            spacing: Theme.space1
            Layout.fillWidth: true
            Layout.preferredWidth: 100
            Layout.alignment: Qt.AlignTop
            Field { form: root.form; name: "dueAtEngineHours" }
            LinkButton { visible: text.length > 0; text: root.form?.hoursProposal ?? ""; onClicked: root.form.takeHoursProposal() }
        }
        Field { form: root.form; name: "recurringEngineHours"; hint: root.form?.hoursHint ?? ""; readOnly: !root.planned }
    }
    Field { form: root.form; name: "notes"; rows: 3 }
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
