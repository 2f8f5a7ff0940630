import QtQuick
import Thalvorn

// A line of chips and small actions above a list; it wraps when there is no room. `end` items stand at the right.
Item {
    id: root

    default property alias content: flow.data
    property alias end: endRow.data

    implicitHeight: Math.max(flow.implicitHeight, endRow.implicitHeight)
    implicitWidth: flow.implicitWidth + endRow.implicitWidth + Theme.space4
    Accessible.role: Accessible.ToolBar

    Flow {
        id: flow
        anchors.left: parent.left
        width: parent.width - (endRow.implicitWidth > 0 ? endRow.implicitWidth + Theme.space4 : 0)
        spacing: Theme.space2
    }
    Row {
        id: endRow
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.space2
    }
}
