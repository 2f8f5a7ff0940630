import QtQuick
import QtQuick.Layouts
import Thalvorn

// A passage to read: its figures, the people aboard, and the trip journal, which is written here.
RegisterDetail {
    id: root

    hidden: ["departurePort", "arrivalPort"]
    subtitle: record.vesselName ?? ""

    TripJournal {
        register: root.register
        recordId: root.recordId
        lines: root.record.journal ?? []
        countText: root.record.journalCount ?? ""
        writable: root.page !== null && root.page.adds
        Layout.fillWidth: true
    }
    PeopleList { title: "Crew roster"; people: root.record.crewRoster ?? []; second: ["role", "watch"]; emptyText: "No crew on roster"; Layout.fillWidth: true }
    PeopleList { title: "Guests"; people: root.record.guests ?? []; second: ["note"]; emptyText: "No guests added. Tap “Add Guest” to record the passenger manifest."; Layout.fillWidth: true }
}
