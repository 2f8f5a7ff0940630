import QtQuick
import QtQuick.Layouts
import Thalvorn

// A label with its value below, for reading.
ColumnLayout {
    id: root

    property string label
    property string value
    property string note
    property color ink: Theme.ink

    spacing: 1
    Layout.fillWidth: true
    Layout.preferredWidth: 100
    Layout.alignment: Qt.AlignTop
    Accessible.role: Accessible.StaticText
    Accessible.name: label + ": " + value

    AppText { text: root.label; variant: "small"; Layout.fillWidth: true; Accessible.ignored: true }
    AppText { text: root.value || "—"; variant: "medium"; color: root.ink; wrapMode: Text.Wrap; Layout.fillWidth: true; Accessible.ignored: true }
    AppText { visible: root.note.length > 0; text: root.note; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
}
