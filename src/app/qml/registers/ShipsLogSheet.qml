import QtQuick
import QtQuick.Layouts
import Thalvorn

// A passage or a day under way.
RegisterSheet {
    id: root

    registerKey: "shipsLog"
    newTitle: "New log entry"
    editTitle: "Edit log entry"
    sheetWidth: 860

    FieldRow {
        Field { form: root.form; name: "date" }
        Field { form: root.form; name: "departurePort" }
        Field { form: root.form; name: "arrivalPort" }
    }
    FieldRow {
        Field { form: root.form; name: "hoursUnderway" }
        Field { form: root.form; name: "engineHours" }
        Field { form: root.form; name: "distanceNM" }
        Field { form: root.form; name: "fuelUsedGallons" }
        Field { form: root.form; name: "fuelUsedLitres" }
    }
    FieldRow {
        Field { form: root.form; name: "weather" }
        Field { form: root.form; name: "seaState" }
        Field { form: root.form; name: "windSpeedKnots" }
        Field { form: root.form; name: "windDirection" }
        Field { form: root.form; name: "waveHeightFeet" }
    }
    FieldRow {
        Field { form: root.form; name: "skipper"; people: Registers.crew; Layout.preferredWidth: 200 }
        Field { form: root.form; name: "crewCount" }
    }
    Field { form: root.form; name: "notes" }
    SubRecordList {
        title: "Crew roster"
        list: root.sheet ? root.sheet.list("crewRoster") : null
        fields: [{ name: "name", share: 2, people: Registers.crew }, { name: "role", share: 1.2 }, { name: "watch", share: 1.2 }]
        addText: "Add crew"
        emptyText: "No crew on roster"
        hint: "Pick from crew library or type above"
        Layout.fillWidth: true
    }
    SubRecordList {
        title: "Guests"
        list: root.sheet ? root.sheet.list("guests") : null
        fields: [{ name: "name", share: 2, people: Registers.guests }, { name: "note", share: 2.4 }]
        addText: "Add Guest"
        emptyText: "No guests added. Tap “Add Guest” to record the passenger manifest."
        hint: "Pick from guest library or type above"
        Layout.fillWidth: true
    }
}
