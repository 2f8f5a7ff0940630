import QtQuick
import QtQuick.Layouts
import Thalvorn

// A page of the program: the head with title, search and actions, and the body below it.
// What the page was opened with, App.open(id, args), stands in `args`, and `opened(args)` tells of each opening, for
// instance with {highlight: id}. Menu commands arrive as `posted(name)` while the page is shown.
FocusScope {
    id: root

    property string title
    property string note
    property string searchPlaceholder
    property alias searchText: search.text
    property var args: ({})
    property Component help
    property var commands: []  // those of newRecord, printPage and exportPage that this page follows
    property bool current: true
    property int padding: Theme.pagePadding
    readonly property bool wide: width >= Theme.detailFrom - Theme.sideWidth
    property alias actions: actionRow.data
    default property alias content: body.data
    signal searchEdited(string text)
    signal searchLeft()
    signal posted(string name)
    signal opened(var args)

    focus: true

    function find() {
        if (!searchPlaceholder)
            return false;
        search.forceFocus();
        return true;
    }
    function clearSearch() {
        search.clear();
    }

    Accessible.role: Accessible.Pane
    Accessible.name: title

    Connections {
        target: App
        enabled: root.current && root.visible
        function onNotification(name) {
            const refusals = { newRecord: "There is nothing to add on this page.", printPage: "This page does not print. The maintenance board and the service history do.", exportPage: "This page has no list to export. The maintenance board and the service history have." };
            if (name === "findOnPage") {
                if (!root.find())
                    App.post("openSearch");
            } else if (name === "newRecord" && App.readOnly)
                App.toast(App.readOnlyHint, "soon");
            else if (refusals[name] !== undefined && !root.commands.includes(name))
                App.toast(refusals[name]);
            else
                root.posted(name);
        }
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.bg
    }

    Rectangle {
        id: head
        width: parent.width
        height: Theme.headHeight
        color: Theme.card

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: Theme.pagePadding
            anchors.rightMargin: Theme.pagePadding
            spacing: Theme.space3

            IconButton {
                visible: App.isSubPage
                iconName: "arrow-left"
                tip: "Back (Alt+Left)"
                implicitWidth: 32
                implicitHeight: 32
                Layout.leftMargin: -Theme.space2
                onClicked: App.back()
            }
            AppText {
                text: root.title
                variant: "title"
                Layout.maximumWidth: Math.max(120, head.width - (search.visible ? search.width : 0) - actionRow.width - 120)
                Accessible.role: Accessible.Heading
            }
            StatusBadge {
                visible: root.current && App.readOnly
                text: "Read only"
                HoverTip { text: App.readOnlyHint }
            }
            AppText {
                visible: root.note.length > 0
                text: root.note
                variant: "small"
                Layout.fillWidth: true
            }
            Item { Layout.fillWidth: true; visible: !root.note }
            SearchField {
                id: search
                visible: root.searchPlaceholder.length > 0
                placeholder: root.searchPlaceholder
                quiet: !Theme.dark
                Layout.preferredWidth: Math.max(160, Math.min(300, head.width - 420))
                onEdited: (text) => root.searchEdited(text)
                onDownPressed: root.searchLeft()
            }
            RowLayout {
                id: actionRow
                visible: children.length > 0
                spacing: Theme.space3
                Layout.fillWidth: false
            }
        }
        Divider { anchors.bottom: parent.bottom; width: parent.width }
    }

    FocusScope {
        id: body
        focus: true
        anchors.top: head.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: root.padding
    }
}
