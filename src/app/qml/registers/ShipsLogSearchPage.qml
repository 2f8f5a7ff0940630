import QtQuick
import QtQuick.Layouts
import Thalvorn

// Passages of all vessels, to find and to print.
RegisterPage {
    id: root

    registerKey: "shipsLogSearch"
    title: "Search and export past trips"
    icon: "magnifying-glass"
    adds: false
    searchPlaceholder: "Search by port, captain or notes…"
    emptyTitle: "No passages yet"
    emptyText: "Passages written in the ship's log of any vessel are found here."
    helpText: "Filters of one kind add up: two kinds of weather show the passages with either."
    columns: [
        TableColumn { title: "Date"; role: "date"; sortKey: "date"; width: 144 },
        TableColumn { title: "Route"; role: "route"; sortKey: "route"; share: 2; minimum: 170; cell: Component { TwoLineCell { text: row?.route || "—"; second: row?.vesselName ?? "" } } },
        TableColumn { title: "Captain"; role: "skipper"; sortKey: "skipper"; share: 1; minimum: 100; hideBelow: 600 },
        TableColumn { title: "Distance"; role: "distanceNM"; sortKey: "distanceNM"; width: 74; alignRight: true },
        TableColumn { title: "Hrs Underway"; role: "hoursUnderway"; sortKey: "hoursUnderway"; width: 96; alignRight: true; hideBelow: 700 },
        TableColumn { title: "Weather"; role: "weather"; sortKey: "weather"; share: 0.8; minimum: 96; hideBelow: 520; cell: Component { TwoLineCell { variant: "body"; text: row?.weather ?? ""; second: row?.seaState ?? "" } } }
    ]
    detail: ShipsLogDetail {}
}
