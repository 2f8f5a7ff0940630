import QtQuick
import QtQuick.Layouts
import Thalvorn

// Notes, parts, photos and corrections of one service, as both the pane and the detailed list show them.
ColumnLayout {
    id: root

    property var service: ({})
    readonly property var parts: service.parts ?? []
    readonly property var photos: service.photos ?? []
    readonly property var corrections: service.corrections ?? []

    spacing: Theme.space3

    AppText {
        visible: text.length > 0
        text: root.service.notes ?? ""
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }

    ColumnLayout {
        visible: root.parts.length > 0
        spacing: 0
        Layout.fillWidth: true
        AppText { text: "Parts used"; variant: "smallStrong"; color: Theme.ink; Layout.bottomMargin: 4 }
        Repeater {
            model: root.parts
            delegate: ColumnLayout {
                id: part
                required property var modelData
                spacing: 0
                Layout.fillWidth: true
                Divider { Layout.fillWidth: true }
                RowLayout {
                    spacing: Theme.space2
                    Layout.fillWidth: true
                    Layout.topMargin: 5
                    Layout.bottomMargin: 5
                    AppText { text: part.modelData.quantity + " ×"; variant: "small"; Layout.minimumWidth: 26 }
                    AppText { text: part.modelData.name; wrapMode: Text.Wrap; Layout.fillWidth: true }
                    AppText { visible: text.length > 0; text: part.modelData.number; variant: "small"; Layout.maximumWidth: 120 }
                    AppText { text: part.modelData.cost || "—"; variant: "medium"; horizontalAlignment: Text.AlignRight; Layout.minimumWidth: 62 }
                }
            }
        }
        Divider { Layout.fillWidth: true }
    }

    Flow {
        visible: root.photos.length > 0
        spacing: Theme.space2
        Layout.fillWidth: true
        Repeater {
            model: root.photos
            delegate: Rectangle {
                id: photo
                required property string modelData
                required property int index
                width: 92
                height: 68
                radius: Theme.radiusControl
                color: Theme.track
                clip: true
                activeFocusOnTab: true
                Accessible.role: Accessible.Button
                Accessible.name: "Photo " + (index + 1)
                Keys.onReturnPressed: Qt.openUrlExternally(modelData)
                Image {
                    anchors.fill: parent
                    source: photo.modelData
                    sourceSize: Qt.size(184, 136)
                    fillMode: Image.PreserveAspectCrop
                    asynchronous: true
                }
                TapHandler { onTapped: Qt.openUrlExternally(photo.modelData) }
                HoverHandler { cursorShape: Qt.PointingHandCursor }
                FocusRing { shown: photo.activeFocus }
            }
        }
    }

    ColumnLayout {
        visible: root.corrections.length > 0
        spacing: Theme.space2
        Layout.fillWidth: true
        AppText { text: "Corrections"; variant: "smallStrong"; color: Theme.ink }
        Repeater {
            model: root.corrections
            delegate: ColumnLayout {
                id: correction
                required property var modelData
                spacing: 1
                Layout.fillWidth: true
                AppText { text: correction.modelData.field + " · " + correction.modelData.by; variant: "smallMedium"; Layout.fillWidth: true }
                AppText { text: correction.modelData.before; variant: "struck"; wrapMode: Text.Wrap; Layout.fillWidth: true; Accessible.name: "Before: " + text }
                AppText { text: correction.modelData.after; variant: "small"; color: Theme.ink; wrapMode: Text.Wrap; Layout.fillWidth: true; Accessible.name: "After: " + text }
                AppText { text: "Reason: " + correction.modelData.reason; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
            }
        }
    }
}
