import QtQuick
import QtQuick.Layouts
import Thalvorn

// A surface with an optional heading and a link at its end. Content stacks in a column from the top; with `stretch` the
// column takes the card's whole height, for a list inside.
Rectangle {
    id: root

    property string title
    property string note
    property string icon
    property string linkText
    property bool stretch: false
    property int padding: Theme.space4
    property int spacing: Theme.space3
    default property alias content: column.data
    signal linkClicked()

    implicitWidth: column.implicitWidth + padding * 2
    implicitHeight: column.implicitHeight + padding * 2
    radius: Theme.radiusCard
    color: Theme.card
    border.width: Theme.hairline
    border.color: Theme.line
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    ColumnLayout {
        id: column
        x: root.padding
        y: root.padding
        width: root.width - root.padding * 2
        height: root.stretch ? root.height - root.padding * 2 : implicitHeight
        spacing: root.spacing

        RowLayout {
            visible: root.title.length > 0
            Layout.fillHeight: false
            Layout.minimumHeight: 20
            spacing: Theme.space2
            Icon { visible: root.icon.length > 0; name: root.icon }
            AppText { text: root.title; variant: "strong"; Layout.fillWidth: true; Layout.maximumWidth: root.note.length > 0 ? Math.ceil(implicitWidth) : Infinity }
            AppText { visible: root.note.length > 0; text: root.note; variant: "body"; color: Theme.mute; Layout.fillWidth: true }
            LinkButton { implicitHeight: 20; visible: root.linkText.length > 0; text: root.linkText; onClicked: root.linkClicked() }
        }
    }
}
