import QtQuick
import QtQuick.Layouts
import Thalvorn

// The passages of the vessel in view, with their journal, roster and manifest.
RegisterPage {
    id: root

    registerKey: "shipsLog"
    sheet: "registers/ShipsLogSheet.qml"
    icon: "book-open"
    addText: "Add entry"
    searchPlaceholder: "Search by port, captain or notes…"
    emptyTitle: "No passages yet"
    emptyText: "One entry per passage or day under way: hours, ports, distance, fuel, weather, crew and guests."
    noVesselText: "Add a vessel first: a passage belongs to one."
    helpText: "Lines of the trip journal are added beside the list, under way."
    moreActions: [{ value: "search", text: "Search and export past trips", icon: "magnifying-glass" }]
    onMoreRequested: (action) => { if (action === "search") App.open("shipsLogSearch"); }
    columns: [
        TableColumn { title: "Date"; role: "date"; sortKey: "date"; width: 144 },
        TableColumn { title: "Route"; role: "route"; sortKey: "route"; share: 2; minimum: 170; cell: Component { TwoLineCell { text: row?.route || "—"; second: row?.skipper ?? "" } } },
        TableColumn { title: "Distance"; role: "distanceNM"; sortKey: "distanceNM"; width: 74; alignRight: true },
        TableColumn { title: "Hrs Underway"; role: "hoursUnderway"; sortKey: "hoursUnderway"; width: 96; alignRight: true; hideBelow: 520 },
        TableColumn { title: "Eng Hrs"; role: "engineHours"; sortKey: "engineHours"; width: 74; alignRight: true; muted: true; hideBelow: 760 },
        TableColumn { title: "Fuel (gal)"; role: "fuelUsedGallons"; sortKey: "fuelUsedGallons"; width: 74; alignRight: true; hideBelow: 600 },
        TableColumn { title: "Weather"; role: "weather"; sortKey: "weather"; share: 0.8; minimum: 96; hideBelow: 660; cell: Component { TwoLineCell { variant: "body"; text: row?.weather ?? ""; second: row?.seaState ?? "" } } }
    ]
    detail: ShipsLogDetail {}
}
