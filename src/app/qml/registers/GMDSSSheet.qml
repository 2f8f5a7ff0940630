import QtQuick
import QtQuick.Layouts
import Thalvorn

// A test of the radio equipment.
RegisterSheet {
    id: root

    registerKey: "gmdss"
    newTitle: "Log Radio Test"
    editTitle: "Edit Radio Test"

    FieldRow {
        Field { form: root.form; name: "testType" }
        Field { form: root.form; name: "result" }
    }
    FieldRow {
        Field { form: root.form; name: "date" }
        Field { form: root.form; name: "performedBy"; people: Registers.crew }
    }
    Field { form: root.form; name: "notes"; hint: "What was found, and what is done about it" }
}
