import QtQuick
import QtQuick.Layouts
import Thalvorn

// How a task's status is determined, in the program's own words.
ColumnLayout {
    readonly property var help: App.statusHelp

    spacing: Theme.space3

    AppText { text: help.title; variant: "subtitle"; wrapMode: Text.Wrap; Layout.fillWidth: true }
    AppText { text: help.section; variant: "smallStrong"; Layout.fillWidth: true }
    AppText { text: help.introduction; wrapMode: Text.Wrap; Layout.fillWidth: true }
    Repeater {
        model: help.rules
        delegate: ColumnLayout {
            required property var modelData
            spacing: Theme.space1
            Layout.fillWidth: true
            StatusBadge { text: modelData.label; tone: modelData.tone }
            AppText { text: modelData.text; wrapMode: Text.Wrap; Layout.fillWidth: true }
        }
    }
    Divider { Layout.fillWidth: true }
    AppText { text: help.elsewhere; color: Theme.mute; wrapMode: Text.Wrap; Layout.fillWidth: true }
}
