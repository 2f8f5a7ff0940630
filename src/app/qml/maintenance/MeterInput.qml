import QtQuick
import Thalvorn

// One hour meter in a form: what it shows, what it gains, and what is odd about the entry.
NumberField {
    property var meter: null

    label: meter?.label ?? ""
    unit: "hrs"
    decimals: 1
    from: 0
    text: meter?.text ?? ""
    hint: (meter?.current ?? "") + (meter?.gain ? " · " + meter.gain : "")
    message: meter?.message ?? ""
    tone: meter?.tone ?? ""
    onEdited: (text) => meter.text = text
}
