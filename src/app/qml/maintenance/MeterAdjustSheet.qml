import QtQuick
import QtQuick.Layouts
import Thalvorn

// Sets one meter to what it shall show, with the reason that stays in the vessel's history.
FormSheet {
    id: root

    property var form: null
    property var meter: null
    property string change

    title: change === "replaced" ? "Meter replaced" : "Correct meter"
    subtitle: meter ? meter.label + " · " + meter.current : ""
    actionText: change === "replaced" ? "Replace meter" : "Correct meter"
    dirty: hours.text.length > 0 || reason.text.length > 0
    canSave: hours.text.trim().length > 0
    sheetWidth: Theme.sheetMin

    function show(newMeter, newChange) {
        meter = newMeter;
        change = newChange;
        error = "";
        hours.replaceText("");
        reason.input.clear();
        open();
    }
    onSaveRequested: {
        const fault = form.adjust(meter.source, change, hours.text, reason.text);
        error = fault;
        if (!fault)
            close();
    }

    AppText {
        text: root.change === "replaced"
              ? "Enter what the new meter shows. Tasks due by this meter move with it, so that the hours still to run stay the same."
              : "Enter what the meter really shows. Tasks due by this meter are judged anew."
        color: Theme.mute
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    NumberField { id: hours; label: root.change === "replaced" ? "New meter shows" : "Meter shows"; unit: "hrs"; decimals: 1; from: 0; required: true; onAccepted: root.save() }
    TextAreaField { id: reason; label: "Reason"; required: true; rows: 2; placeholder: root.change === "replaced" ? "e.g. old meter failed" : "e.g. digits swapped when typing" }
}
