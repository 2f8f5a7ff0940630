import QtQuick
import Thalvorn

// One module in the sidebar, with the heading of its group above when it is the first of it.
Column {
    id: root

    property var entry: ({})
    property string heading
    property bool narrow: false
    property bool focused: false
    readonly property bool chosen: App.page === entry.id
    readonly property var attention: Fleet.attention[entry.id] ?? null

    function open() {
        App.open(entry.id);
    }

    Item {
        visible: root.heading.length > 0
        width: parent.width
        height: root.narrow ? 17 : 38
        Text {
            visible: !root.narrow
            anchors.left: parent.left
            anchors.leftMargin: 10
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 7
            text: root.heading.toUpperCase()
            font: Theme.fonts.caps
            color: Theme.sideMute
        }
        Rectangle {
            visible: root.narrow
            anchors.centerIn: parent
            width: parent.width - Theme.space4
            height: Theme.hairline
            color: Theme.sideLine
        }
    }

    Rectangle {
        width: parent.width
        height: 34
        radius: Theme.radiusControl
        color: root.chosen ? Theme.sideRaised : hover.hovered ? Theme.sideHover : "transparent"
        border.width: root.focused ? 2 : 0
        border.color: Theme.sideAccent
        Accessible.role: Accessible.Link
        Accessible.name: root.entry.title + (root.attention ? ", " + root.attention.count + " " + root.attention.meaning : "")
        Accessible.onPressAction: root.open()

        Icon {
            anchors.left: parent.left
            anchors.leftMargin: root.narrow ? (parent.width - width) / 2 : 10
            anchors.verticalCenter: parent.verticalCenter
            name: root.entry.icon
            color: root.chosen ? Theme.sideStrong : Theme.sideInk
        }
        Text {
            visible: !root.narrow
            anchors.left: parent.left
            anchors.leftMargin: 38
            width: parent.width - 38 - (badge.visible ? badge.width + 14 : 8)
            anchors.verticalCenter: parent.verticalCenter
            text: root.entry.title
            font: root.chosen ? Theme.fonts.medium : Theme.fonts.body
            color: root.chosen ? Theme.sideStrong : Theme.sideInk
            elide: Text.ElideRight
        }
        CountBadge {
            id: badge
            anchors.right: parent.right
            anchors.rightMargin: root.narrow ? -2 : 9
            y: root.narrow ? -3 : (parent.height - height) / 2
            scale: root.narrow ? 0.8 : 1
            count: root.attention ? root.attention.count : 0
            tone: root.attention ? root.attention.tone : ""
            meaning: root.attention ? root.attention.meaning : ""
        }
        HoverHandler { id: hover; cursorShape: Qt.PointingHandCursor }
        TapHandler { onTapped: root.open() }
        HoverTip {
            text: root.narrow ? root.entry.title : root.entry.shortcut
            shown: hover.hovered
        }
    }
}
