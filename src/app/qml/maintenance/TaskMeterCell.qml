import QtQuick
import Thalvorn

// The meter a task is judged by; marked when the vessel is not fitted with it.
TableCell {
    id: root

    readonly property bool missing: row ? row.meterMissing === true : false

    Row {
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4
        Icon { visible: root.missing; name: "warning"; size: 14; color: Theme.overdue; anchors.verticalCenter: parent.verticalCenter }
        AppText {
            width: Math.min(implicitWidth, root.width - (root.missing ? 18 : 0))
            text: root.row ? root.row.meter ?? "" : ""
            color: root.missing ? Theme.overdue : Theme.mute
        }
    }
    HoverHandler { id: hover }
    HoverTip { text: "The vessel has no such meter"; shown: root.missing && hover.hovered }
}
