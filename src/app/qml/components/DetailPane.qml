import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// The card that shows one record to read. Its content stacks in a column and scrolls.
Rectangle {
    id: root

    property string title
    property bool showBack: false
    property int padding: Theme.space4
    default property alias content: column.data
    signal back()

    radius: Theme.radiusCard
    color: Theme.card
    border.width: Theme.hairline
    border.color: Theme.line
    implicitWidth: Theme.detailWidth
    implicitHeight: 320
    Accessible.role: Accessible.Pane
    Accessible.name: title

    LinkButton {
        id: backLink
        visible: root.showBack
        x: root.padding
        y: Theme.space3
        text: "Back to the list"
        iconName: "arrow-left"
        onClicked: root.back()
    }
    Flickable {
        id: flick
        anchors.fill: parent
        anchors.topMargin: root.showBack ? backLink.height + Theme.space3 : 1
        anchors.bottomMargin: 1
        contentWidth: width
        contentHeight: column.implicitHeight + root.padding * 2
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        T.ScrollBar.vertical: AppScrollBar {}

        ColumnLayout {
            id: column
            x: root.padding
            y: root.padding
            width: flick.width - root.padding * 2
            spacing: Theme.space3
        }
    }
}
