import QtQuick
import QtQuick.Layouts
import Thalvorn

// Every test of the radio equipment of the vessel in view.
RegisterPage {
    id: root

    registerKey: "gmdss"
    sheet: "registers/GMDSSSheet.qml"
    icon: "broadcast"
    addText: "Log test"
    searchPlaceholder: "Search test, name, notes"
    noVesselTitle: "Select a vessel to view the radio test log."
    noVesselText: "Add a vessel first: a radio test belongs to one."
    emptyTitle: "No test log entries yet."
    emptyText: "Each test of the radio equipment is logged here: the daily battery check, the weekly call, EPIRB and SART every month, the annual survey."
    helpText: "A test counts as passed with or without notes. The next one is due a day, a week, a month or a year after it was last passed."
    deleteQuestion: "Delete this log entry?"
    columns: [
        TableColumn { title: "Date"; role: "date"; sortKey: "date"; width: 144 },
        TableColumn { title: "Test"; role: "testType"; sortKey: "testType"; share: 1.6; minimum: 150; strong: true },
        TableColumn { title: "Result"; role: "result"; sortKey: "result"; width: 116 },
        TableColumn { title: "Performed by"; role: "performedBy"; sortKey: "performedBy"; share: 1; minimum: 110; hideBelow: 560 },
        TableColumn { title: "Notes"; role: "notes"; sortKey: "notes"; share: 2; minimum: 140; muted: true; hideBelow: 720 }
    ]
    detail: RegisterDetail {
        editText: "Edit this entry"

        PeopleList { title: "Periodic tests"; people: record.standings ?? []; second: ["standing", "nextDue"]; Layout.fillWidth: true }
        PeopleList { title: "GMDSS Radio Operator Certifications"; people: record.operators ?? []; second: ["number", "expiry"]; emptyText: "Tracked in Crew → Certifications"; Layout.fillWidth: true }
    }
}
