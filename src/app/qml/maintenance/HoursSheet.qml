import QtQuick
import QtQuick.Layouts
import Thalvorn

// All hour meters of the vessel in one form, and the ways to put a meter right.
FormSheet {
    id: root

    readonly property var form: Maintenance.editHours()

    title: "Hour meters"
    subtitle: form ? form.vesselName + " · " + form.updated : ""
    actionText: "Update meters"
    error: form ? form.error : "Add a vessel first."
    dirty: form ? form.dirty : false
    canSave: form !== null
    covered: adjust.opened
    onSaveRequested: if (form.save()) close()

    AppText {
        text: "Enter what the meters show now. Empty fields are skipped — meters only count up. A wrong reading is put right with “Correct meter…”."
        color: Theme.mute
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    GridLayout {
        columns: 2
        columnSpacing: Theme.space6
        rowSpacing: Theme.space4
        Layout.fillWidth: true
        Repeater {
            model: root.form?.meters ?? []
            delegate: RowLayout {
                id: line
                required property var modelData
                spacing: Theme.space2
                Layout.fillWidth: true
                Layout.preferredWidth: 10
                Layout.alignment: Qt.AlignTop
                MeterInput { meter: line.modelData }
                IconButton {
                    id: more
                    iconName: "dots-three"
                    tip: "Correct or replace " + line.modelData.label
                    Layout.alignment: Qt.AlignTop
                    Layout.topMargin: 22
                    onClicked: menu.openBelow(more)
                    OptionMenu {
                        id: menu
                        options: [{ value: "corrected", text: "Correct meter…", icon: "pencil-simple" }, { value: "replaced", text: "Meter replaced…", icon: "repeat" }]
                        onPicked: (value) => adjust.show(line.modelData, value)
                    }
                }
            }
        }
    }
    ColumnLayout {
        visible: history.lines.length > 0
        spacing: Theme.space2
        Layout.fillWidth: true
        Divider { Layout.fillWidth: true }
        AppText { text: "Meter history"; variant: "medium"; Layout.fillWidth: true }
        HistoryLines { id: history; lines: root.form?.history ?? []; Layout.fillWidth: true }
    }

    MeterAdjustSheet { id: adjust; form: root.form }
}
