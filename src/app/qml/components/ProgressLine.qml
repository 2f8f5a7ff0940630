import QtQuick
import Thalvorn

// How much of an interval is used, 0 to 1 and more; the colour is the status, so it always stands beside its word.
Item {
    id: root

    property real value: 0
    property string tone
    property string meaning: "Interval used"

    implicitHeight: 6
    implicitWidth: 120
    Accessible.role: Accessible.ProgressBar
    Accessible.name: meaning + " " + Math.round(Math.min(1, Math.max(0, value)) * 100) + " %"

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Theme.track
    }
    Rectangle {
        height: parent.height
        width: root.value > 0 ? Math.max(parent.height, parent.width * Math.min(1, root.value)) : 0
        radius: height / 2
        color: Theme.statusInk(root.tone)
    }
}
