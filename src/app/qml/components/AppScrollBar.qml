import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A slim scroll bar that shows while it is of use.
T.ScrollBar {
    id: root

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.06
    visible: size < 1
    Accessible.role: Accessible.ScrollBar

    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: root.pressed || root.hovered ? Theme.faint : Theme.controlLine
        opacity: root.active || root.hovered ? 1 : 0.7
    }
}
