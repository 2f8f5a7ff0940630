import QtQuick
import Thalvorn

// Whether everything is on disk, at the foot of the sidebar.
Item {
    id: root

    property bool narrow: false
    readonly property bool failing: Fleet.saveError.length > 0

    implicitHeight: 40
    Accessible.role: Accessible.StaticText
    Accessible.name: Fleet.saveText

    Icon {
        id: icon
        anchors.left: parent.left
        anchors.leftMargin: root.narrow ? (parent.width - width) / 2 : 10
        anchors.verticalCenter: parent.verticalCenter
        name: root.failing ? "warning" : Fleet.unsaved > 0 ? "floppy-disk" : "check-circle"
        size: 17
        color: root.failing ? Theme.sideSoonInk : Theme.sideMute
    }
    Text {
        visible: !root.narrow
        anchors.left: parent.left
        anchors.leftMargin: 38
        width: parent.width - 38
        anchors.verticalCenter: parent.verticalCenter
        text: Fleet.saveText
        font: Theme.fonts.small
        color: root.failing ? Theme.sideSoonInk : Theme.sideMute
        elide: Text.ElideRight
    }
    HoverTip { text: root.failing ? Fleet.saveError : root.narrow ? Fleet.saveText : "Every change is on this computer’s disk." }
}
