import QtQuick
import QtQuick.Layouts
import Thalvorn

// Every delivery of fuel to the vessel in view.
RegisterPage {
    id: root

    registerKey: "bunkering"
    sheet: "registers/BunkeringSheet.qml"
    icon: "gas-pump"
    addText: "Add bunkering"
    searchPlaceholder: "Search supplier, port, invoice"
    noVesselTitle: "Select a vessel to view bunkering records."
    noVesselText: "Add a vessel first: a bunkering belongs to one."
    emptyTitle: "No Bunkering Records"
    emptyText: "Each delivery of fuel is recorded here: who supplied it, where, how much and at what charge."
    helpText: "The total charge is what the supplier invoiced, tax and fees included; it is never worked out from the quantity."
    columns: [
        TableColumn { title: "Date"; role: "date"; sortKey: "date"; width: 144 },
        TableColumn { title: "Supplier"; role: "supplierName"; sortKey: "supplierName"; share: 1.6; minimum: 150; cell: Component { TwoLineCell { text: row?.supplierName || "—"; second: row?.invoiceNumber ?? "" } } },
        TableColumn { title: "Port"; role: "port"; sortKey: "port"; share: 1.3; minimum: 110; hideBelow: 560; cell: Component { TwoLineCell { variant: "body"; text: row?.port ?? ""; second: row?.location ?? "" } } },
        TableColumn { title: "Fuel"; role: "fuelType"; sortKey: "fuelType"; width: 70; hideBelow: 480 },
        TableColumn { title: "Quantity (gal)"; role: "quantityGallons"; sortKey: "quantityGallons"; width: 106; alignRight: true },
        TableColumn { title: "Price"; role: "pricePerGallon"; sortKey: "pricePerGallon"; width: 66; alignRight: true; muted: true; hideBelow: 720 },
        TableColumn { title: "Total charge"; role: "totalCharge"; sortKey: "totalCharge"; width: 108; alignRight: true; strong: true; cell: Component { TwoLineCell { text: row?.totalCharge ?? ""; second: row?.currency ?? "" } } }
    ]
    detail: RegisterDetail {
        editText: "Edit this record"
        subtitle: record.vesselName ?? ""
    }
}
