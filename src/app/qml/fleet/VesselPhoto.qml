import QtQuick
import Thalvorn

// A vessel's photo, or a quiet sign where there is none.
Rectangle {
    id: root

    property string source

    radius: Theme.radiusControl
    color: Theme.track
    clip: true
    Icon { anchors.centerIn: parent; visible: picture.status !== Image.Ready; name: "boat"; size: 26; color: Theme.faint }
    Image {
        id: picture
        anchors.fill: parent
        source: root.source
        sourceSize: Qt.size(root.width * 2, root.height * 2)
        fillMode: Image.PreserveAspectCrop
        asynchronous: true
    }
}
