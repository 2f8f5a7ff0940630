import QtQuick
import Thalvorn

// One hour meter in a form: what it shows, what it gains, and what is odd about the entry. `brief` leaves the words for
// that to the owner, where a row of meters has no room for them.
NumberField {
    property var meter: null
    property bool brief: false

    label: meter?.label ?? ""
    unit: "hrs"
    decimals: 1
    from: 0
    text: meter?.text ?? ""
    hint: (meter?.current ?? "") + (meter?.gain ? " · " + meter.gain : "")
    message: brief ? "" : meter?.message ?? ""
    faulty: brief && (meter?.message ?? "") !== "" && tone === "overdue"
    tone: meter?.tone ?? ""
    onEdited: (text) => meter.text = text
}
