import QtQuick
import QtQuick.Layouts
import Thalvorn

// Dated entries to read: [{title, text, id}]. One with an id is a service and opens it in the service history.
ColumnLayout {
    id: root

    property var lines: []

    spacing: Theme.space3

    Repeater {
        model: root.lines
        delegate: ColumnLayout {
            id: line
            required property var modelData
            readonly property bool opens: (modelData.id ?? "") !== ""
            spacing: 1
            Layout.fillWidth: true
            LinkButton {
                visible: line.opens
                text: line.modelData.title
                ink: Theme.ink
                implicitHeight: 18
                tip: "Show it in the service history"
                onClicked: App.open("serviceHistory", { highlight: line.modelData.id })
            }
            AppText { visible: !line.opens; text: line.modelData.title; variant: "smallMedium"; color: Theme.ink; wrapMode: Text.Wrap; Layout.fillWidth: true }
            AppText { visible: text.length > 0; text: line.modelData.text; variant: "small"; wrapMode: Text.Wrap; maximumLineCount: 4; Layout.fillWidth: true }
        }
    }
}
