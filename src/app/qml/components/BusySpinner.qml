import QtQuick
import Thalvorn

// Turns while something is under way; where motion is unwanted it stands still.
Item {
    id: root

    property real size: 22
    property color color: Theme.accent

    implicitWidth: size
    implicitHeight: size

    Icon {
        anchors.fill: parent
        name: "circle-notch"
        color: root.color
        RotationAnimator on rotation {
            running: root.visible && !App.reducedMotion
            from: 0
            to: 360
            duration: 900
            loops: Animation.Infinite
        }
    }
}
