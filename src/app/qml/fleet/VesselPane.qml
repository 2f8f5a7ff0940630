import QtQuick
import QtQuick.Layouts
import Thalvorn

// One vessel to read: photo, meters, particulars.
ColumnLayout {
    id: root

    property string vesselId
    property int revision: 0
    readonly property var about: revision >= 0 && vesselId ? VesselList.describe(vesselId) : ({})
    readonly property bool shown: (about.id ?? "") !== ""
    signal editRequested()
    signal deleteRequested()

    spacing: Theme.space4
    Connections {
        target: VesselList
        function onChanged() { root.revision += 1; }
    }

    EmptyState {
        visible: !root.shown
        icon: "boat"
        title: "Choose a vessel"
        text: "Her meters and particulars are shown here."
        Layout.fillWidth: true
        Layout.topMargin: Theme.space8
    }
    VesselPhoto {
        visible: root.shown && source !== ""
        source: root.about.photo ?? ""
        Layout.fillWidth: true
        Layout.preferredHeight: 190
    }
    RowLayout {
        visible: root.shown
        spacing: Theme.space2
        Layout.fillWidth: true
        AppText { text: root.about.name ?? ""; variant: "subtitle"; wrapMode: Text.Wrap; Layout.fillWidth: true }
        SecondaryButton { text: "Edit…"; writes: true; iconName: "pencil-simple"; onClicked: root.editRequested() }
        IconButton { iconName: "trash"; outlined: true; writes: true; tip: "Delete…"; onClicked: root.deleteRequested() }
    }
    AppText { visible: root.shown && text.length > 0; text: root.about.notes ?? ""; color: Theme.mute; wrapMode: Text.Wrap; Layout.fillWidth: true }
    Repeater {
        model: root.about.sections ?? []
        delegate: ColumnLayout {
            id: section
            required property var modelData
            spacing: Theme.space2
            Layout.fillWidth: true
            Divider { Layout.fillWidth: true }
            AppText { text: section.modelData.title; variant: "smallStrong"; color: Theme.ink }
            GridLayout {
                columns: 2
                columnSpacing: Theme.space3
                rowSpacing: Theme.space3
                Layout.fillWidth: true
                Repeater {
                    model: section.modelData.facts
                    delegate: Fact {
                        required property var modelData
                        label: modelData.label
                        value: modelData.value
                    }
                }
            }
        }
    }
}
