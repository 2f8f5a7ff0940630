import QtQuick
import QtQuick.Layouts
import Thalvorn

// What else needs a hand.
Card {
    id: root

    property var items: []

    title: "Attention"

    ColumnLayout {
        spacing: 0
        Layout.fillWidth: true
        Layout.leftMargin: 1 - root.padding
        Layout.rightMargin: 1 - root.padding
        Layout.topMargin: -Theme.space1
        Layout.alignment: Qt.AlignTop
        Repeater {
            model: root.items
            delegate: HomeRow {
                id: row
                required property var modelData
                required property int index
                last: index === root.items.length - 1
                Layout.fillWidth: true
                Accessible.name: modelData.title + ", " + modelData.detail
                onClicked: {
                    if (modelData.notification)
                        App.post(modelData.notification);
                    else
                        App.open(modelData.page, modelData.arguments);
                }
                RowLayout {
                    anchors.fill: parent
                    spacing: Theme.space3
                    Icon { name: row.modelData.icon; color: Theme.mute }
                    ColumnLayout {
                        spacing: 1
                        Layout.fillWidth: true
                        AppText { text: row.modelData.title; variant: "medium"; Layout.fillWidth: true }
                        AppText { text: row.modelData.detail; variant: "small"; Layout.fillWidth: true }
                    }
                }
            }
        }
    }
}
