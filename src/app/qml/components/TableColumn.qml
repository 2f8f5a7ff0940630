import QtQuick

// One column of a DataTable. Without a `cell` it shows the model's role as text.
// A `cell` component's root is a TableCell (or TwoLineCell, BadgeCell …) and reads `row.<role>`.
QtObject {
    property string title
    property string role
    property string sortKey
    property int width: 0        // fixed, in pixels; 0 = takes a share of what is left
    property real share: 1
    property int minimum: 80
    property int hideBelow: 0    // the column goes when the table is narrower than this
    property bool alignRight: false
    property bool strong: false
    property bool muted: false
    property Component cell: null
}
