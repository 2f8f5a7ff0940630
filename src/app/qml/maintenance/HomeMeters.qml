import QtQuick
import QtQuick.Layouts
import Thalvorn

// What the hour meters show, and the way to update them.
Card {
    id: root

    property var meters: []
    property string updated

    title: "Hour meters"
    icon: "gauge"
    stretch: true
    spacing: Theme.space1

    GridLayout {
        columns: root.meters.length > 2 ? 2 : 1
        columnSpacing: Theme.space2
        rowSpacing: 2
        Layout.fillWidth: true
        Repeater {
            model: root.meters
            delegate: RowLayout {
                required property var modelData
                spacing: Theme.space1
                Layout.fillWidth: true
                Layout.preferredWidth: 10
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.label + ": " + modelData.value + " hours"
                AppText { text: parent.modelData.label; variant: "small"; Layout.fillWidth: true; Accessible.ignored: true }
                AppText { text: parent.modelData.value; variant: "smallStrong"; color: Theme.ink; tip: false; Accessible.ignored: true }
            }
        }
    }
    Item { Layout.fillHeight: true }
    RowLayout {
        spacing: 5
        AppText { text: root.updated + " ·"; variant: "small" }
        LinkButton { text: "Update readings"; writes: true; implicitHeight: 20; enabled: root.meters.length > 0; onClicked: App.post("openHoursEditor") }
    }
}
