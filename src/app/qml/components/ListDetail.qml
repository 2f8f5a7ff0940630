import QtQuick
import Thalvorn

// A list with the detail of its selection: beside it when there is room, else in its place with a way back.
// `list` and `detail` fill their sides; set `open` when something is selected.
FocusScope {
    id: root

    property alias list: listSlot.data
    property alias detail: pane.content
    property string detailTitle
    property bool open: false
    property int detailWidth: Theme.detailWidth
    readonly property bool beside: width >= Theme.detailFrom - Theme.sideWidth - Theme.pagePadding * 2
    signal closed()

    Keys.onEscapePressed: (event) => {
        if (open && !beside)
            closed();
        else
            event.accepted = false;
    }

    FocusScope {
        id: listSlot
        focus: true
        visible: root.beside || !root.open
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: root.beside ? pane.left : parent.right
        anchors.rightMargin: root.beside ? Theme.space4 : 0
    }
    DetailPane {
        id: pane
        visible: root.beside || root.open
        title: root.detailTitle
        showBack: !root.beside
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.right: parent.right
        width: root.beside ? root.detailWidth : parent.width
        onBack: root.closed()
    }
}
