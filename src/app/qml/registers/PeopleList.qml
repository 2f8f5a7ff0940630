import QtQuick
import QtQuick.Layouts
import Thalvorn

// Names to read, each with what else is known of it.
ColumnLayout {
    id: root

    property string title
    property var people: []
    property var second: []  // the fields below the name
    property string emptyText

    spacing: Theme.space1

    Divider { Layout.fillWidth: true; Layout.bottomMargin: Theme.space1 }
    AppText { text: root.people.length > 0 ? root.title + " · " + root.people.length : root.title; variant: "smallStrong"; color: Theme.ink }
    AppText { visible: root.people.length === 0; text: root.emptyText; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
    Repeater {
        model: root.people
        delegate: RowLayout {
            id: person
            required property var modelData
            spacing: Theme.space2
            Layout.fillWidth: true
            AppText { text: person.modelData.name || "—"; Layout.fillWidth: true }
            AppText { text: root.second.map((field) => person.modelData[field]).filter((text) => text).join(" · "); variant: "small"; elide: Text.ElideRight; Layout.maximumWidth: root.width * 0.55 }
        }
    }
}
