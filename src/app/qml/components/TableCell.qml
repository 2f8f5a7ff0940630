import QtQuick
import Thalvorn

// The root of a cell of a DataTable: `row` holds the model's roles of its row.
Item {
    readonly property var row: parent && parent.row !== undefined ? parent.row : null
    readonly property bool selected: parent ? parent.selected === true : false
    readonly property bool alignRight: parent ? parent.alignRight === true : false

    anchors.fill: parent
}
