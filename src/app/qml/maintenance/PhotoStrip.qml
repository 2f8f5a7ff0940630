import QtQuick
import QtQuick.Templates as T
import Thalvorn

// Photos as small pictures; with `editable` they can be added (from files or dropped here) and taken out.
Flow {
    id: root

    property var photos: []
    property bool editable: false
    signal added(var pictures)
    signal removed(int position)

    spacing: Theme.space2

    Repeater {
        model: root.photos
        delegate: T.AbstractButton {
            id: photo
            required property string modelData
            required property int index
            width: 76
            height: 54
            focusPolicy: Qt.StrongFocus
            hoverEnabled: true
            Accessible.role: Accessible.Button
            Accessible.name: "Photo " + (index + 1)
            onClicked: if (modelData) Qt.openUrlExternally(modelData)
            Keys.onReturnPressed: clicked()
            Keys.onDeletePressed: if (root.editable) root.removed(index)

            Rectangle {
                anchors.fill: parent
                radius: Theme.radiusControl
                color: Theme.track
                Icon { anchors.centerIn: parent; visible: picture.status !== Image.Ready; name: "image"; color: Theme.mute }
            }
            Image {
                id: picture
                anchors.fill: parent
                source: photo.modelData
                sourceSize: Qt.size(152, 108)
                fillMode: Image.PreserveAspectCrop
                asynchronous: true
                autoTransform: true
            }
            IconButton {
                visible: root.editable && (photo.hovered || photo.activeFocus)
                anchors.right: parent.right
                anchors.top: parent.top
                implicitWidth: 24
                implicitHeight: 24
                iconName: "x"
                outlined: true
                focusPolicy: Qt.NoFocus
                tip: "Take this photo out"
                onClicked: root.removed(photo.index)
            }
            FocusRing {}
        }
    }

    T.AbstractButton {
        id: add
        visible: root.editable
        width: 76
        height: 54
        focusPolicy: Qt.StrongFocus
        hoverEnabled: true
        Accessible.role: Accessible.Button
        Accessible.name: "Add photos"
        onClicked: dialog.open()
        Keys.onReturnPressed: clicked()
        background: Rectangle {
            radius: Theme.radiusControl
            color: drop.containsDrag ? Theme.accentBg : add.hovered ? Theme.hover : Theme.card
            border.width: Theme.hairline
            border.color: drop.containsDrag ? Theme.accent : Theme.controlLine
        }
        Icon { anchors.centerIn: parent; name: "camera-plus"; color: Theme.mute }
        FocusRing {}
        HoverTip { text: "Add photos, or drop them here"; shown: add.hovered }
        DropArea {
            id: drop
            anchors.fill: parent
            keys: ["text/uri-list"]
            onDropped: (event) => { root.added(event.urls); event.accept(); }
        }
    }

    FileChooser {
        id: dialog
        title: "Add photos"
        multiple: true
        nameFilters: ["Pictures (*.jpg *.jpeg *.png *.webp *.gif *.bmp)", "All files (*)"]
        onChosenMany: (files) => root.added(files)
    }
}
