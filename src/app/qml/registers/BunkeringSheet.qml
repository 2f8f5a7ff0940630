import QtQuick
import QtQuick.Layouts
import Thalvorn

// A delivery of fuel.
RegisterSheet {
    id: root

    registerKey: "bunkering"
    newTitle: "New Bunkering Record"
    editTitle: "Edit Bunkering Record"

    FieldRow {
        Field { form: root.form; name: "vesselName" }
        Field { form: root.form; name: "vesselIMO" }
        Field { form: root.form; name: "date" }
    }
    SheetSection { text: "Supplier and place" }
    FieldRow {
        Field { form: root.form; name: "supplierName" }
        Field { form: root.form; name: "supplierContact" }
    }
    FieldRow {
        Field { form: root.form; name: "port" }
        Field { form: root.form; name: "location" }
    }
    SheetSection { text: "Fuel" }
    FieldRow {
        Field { form: root.form; name: "fuelType" }
        Field { form: root.form; name: "quantityGallons"; hint: root.form && root.form.revision >= 0 ? root.register.inLitres(root.sheet) : "" }
    }
    SheetSection { text: "Cost & Invoicing" }
    FieldRow {
        Field { form: root.form; name: "pricePerGallon" }
        ComboField {
            label: "Currency"
            options: root.register.currencies(root.sheet)
            value: root.form && root.form.revision >= 0 ? root.form.text("currency") : ""
            onPicked: (value) => root.form.setText("currency", value)
        }
        Field { form: root.form; name: "invoiceNumber" }
    }
    FieldRow {
        TextInputField {
            label: "Calculated Total"
            readOnly: true
            alignRight: true
            hint: "Quantity × price, to compare with the invoice"
            text: root.form && root.form.revision >= 0 ? root.register.calculatedTotal(root.sheet) : ""
        }
        Field { form: root.form; name: "totalCharge"; hint: "As invoiced; never overwritten" }
    }
    Field { form: root.form; name: "notes" }
}
