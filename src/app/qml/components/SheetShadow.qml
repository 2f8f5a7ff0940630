import QtQuick
import Thalvorn

// The one soft shadow, below sheets and menus: a few transparent outlines, cheap on any renderer.
Item {
    id: root

    property real radius: Theme.radiusSheet

    Repeater {
        model: 8
        delegate: Rectangle {
            required property int index
            anchors.fill: parent
            anchors.margins: -(index + 1) * 1.5
            anchors.topMargin: -(index + 1) * 1.5 + 4
            anchors.bottomMargin: -(index + 1) * 1.5 - 4
            radius: root.radius + (index + 1) * 1.5
            color: Theme.shadow
            opacity: 0.09
        }
    }
}
