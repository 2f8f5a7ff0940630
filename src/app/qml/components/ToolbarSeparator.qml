import QtQuick
import Thalvorn

// A hairline between groups of chips.
Item {
    implicitWidth: 9
    implicitHeight: Theme.chipHeight
    Rectangle {
        anchors.centerIn: parent
        width: Theme.hairline
        height: 18
        color: Theme.controlLine
    }
}
