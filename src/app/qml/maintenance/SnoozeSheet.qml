import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// Silences a task for a while, changes until when, or ends it.
FormSheet {
    id: root

    required property string taskId
    readonly property var form: Maintenance.snoozeTask(taskId)

    title: form && form.snoozed ? "Change the snooze" : "Snooze this task"
    subtitle: form ? form.subtitle : ""
    actionText: "Snooze"
    actionIcon: "bell-z"
    footNote: form ? form.untilText : ""
    error: form ? form.error : "This task was deleted meanwhile."
    canSave: form !== null && form.message.length === 0
    onSaveRequested: if (form.save()) close()
    onOpened: {
        for (let i = 0; i < choices.count; ++i)
            if (choices.itemAt(i).checked)
                choices.itemAt(i).forceActiveFocus(Qt.TabFocusReason);
    }
    // Arrow keys go from one period to the next and choose it.
    function choose(index) {
        const item = choices.itemAt(Math.max(0, Math.min(choices.count - 1, index)));
        form.period = item.modelData.value;
        item.forceActiveFocus(Qt.TabFocusReason);
    }
    footer: SecondaryButton {
        visible: root.form !== null && root.form.snoozed
        text: "End the snooze"
        onClicked: if (root.form.endSnooze()) root.close()
    }

    AppText {
        text: "A snoozed task stays on the board but is not counted, and no reminder is raised until it ends. A note says so in the task."
        color: Theme.mute
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    GridLayout {
        columns: 3
        columnSpacing: Theme.space3
        rowSpacing: Theme.space3
        Layout.fillWidth: true
        Repeater {
            id: choices
            model: root.form?.periods ?? []
            delegate: T.RadioButton {
                id: choice
                required property var modelData
                required property int index
                implicitHeight: 56
                checked: root.form.period === modelData.value
                focusPolicy: Qt.StrongFocus
                hoverEnabled: true
                Layout.fillWidth: true
                Layout.preferredWidth: 10
                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData.text
                onClicked: {
                    root.form.period = modelData.value;
                    checked = Qt.binding(() => root.form.period === modelData.value);
                }
                Keys.onReturnPressed: root.save()
                Keys.onLeftPressed: root.choose(index - 1)
                Keys.onRightPressed: root.choose(index + 1)
                Keys.onUpPressed: root.choose(index - 3)
                Keys.onDownPressed: root.choose(index + 3)
                background: Rectangle {
                    radius: Theme.radiusControl
                    color: choice.checked ? Theme.accentBg : choice.hovered ? Theme.hover : Theme.card
                    border.width: Theme.hairline
                    border.color: choice.checked ? Theme.accent : Theme.controlLine
                }
                Column {
                    anchors.left: parent.left
                    anchors.leftMargin: Theme.space3
                    anchors.verticalCenter: parent.verticalCenter
                    AppText { text: choice.modelData.text; variant: "medium"; color: choice.checked ? Theme.accent : Theme.ink }
                    AppText { visible: text.length > 0; text: choice.modelData.detail; variant: "small" }
                }
                FocusRing {}
            }
        }
    }
    DateField {
        label: "Until"
        optional: false
        date: root.form?.until
        fault: root.form?.message ?? ""
        onPicked: (date) => { if (date !== undefined) root.form.until = date; }
        Layout.fillWidth: false
        Layout.preferredWidth: 260
    }
}
