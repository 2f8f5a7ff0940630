import QtQuick
import Thalvorn

// A status badge in a table.
TableCell {
    id: root

    property alias text: badge.text
    property alias tone: badge.tone

    StatusBadge {
        id: badge
        visible: text.length > 0
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, root.width)
    }
}
