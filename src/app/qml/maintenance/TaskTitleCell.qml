import QtQuick
import Thalvorn

// A task's title, with its signs: high priority, photos.
TableCell {
    id: root

    Row {
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        spacing: 6

        AppText {
            width: Math.min(implicitWidth, parent.width - signs.width - (signs.width > 0 ? 6 : 0))
            text: root.row ? root.row.title ?? "" : ""
            variant: "medium"
            wrapMode: Text.Wrap
            maximumLineCount: 2
            anchors.verticalCenter: parent.verticalCenter
        }
        Row {
            id: signs
            spacing: 4
            anchors.verticalCenter: parent.verticalCenter
            Icon {
                visible: root.row && root.row.high === true
                name: "flag"
                size: 14
                color: Theme.overdue
                HoverHandler { id: flagHover }
                HoverTip { text: "High priority"; shown: flagHover.hovered }
            }
            Icon { visible: root.row && root.row.photos > 0; name: "image"; size: 14; color: Theme.mute }
        }
    }
}
