import QtQuick
import Thalvorn

// The field a task list is sorted by, and the direction.
Row {
    id: root

    property var model: null
    property var fields: Maintenance.sortFields

    spacing: Theme.space1

    DropdownButton {
        label: "Sort"
        iconName: root.model && root.model.descending ? "sort-descending" : "sort-ascending"
        options: root.fields
        value: root.model ? root.model.sort : ""
        onPicked: (value) => root.model.sort = value
    }
    Chip {
        iconName: root.model && root.model.descending ? "caret-down" : "caret-up"
        tip: root.model && root.model.descending ? "Descending" : "Ascending"
        Accessible.name: tip
        onClicked: root.model.descending = !root.model.descending
    }
}
