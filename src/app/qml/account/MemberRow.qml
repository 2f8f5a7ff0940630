import QtQuick
import QtQuick.Layouts
import Thalvorn

// One member in the list of the team.
Rectangle {
    id: root

    property var member: ({})
    signal editRequested()
    signal removeRequested()

    implicitHeight: Theme.rowHeight
    radius: Theme.radiusControl
    color: hover.hovered ? Theme.hover : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: member.name + ", " + member.roleText + ", " + member.state

    HoverHandler { id: hover }
    TapHandler { onTapped: root.editRequested() }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: Theme.space2
        spacing: Theme.space3
        ColumnLayout {
            spacing: 1
            Layout.fillWidth: true
            Layout.preferredWidth: 100
            AppText { text: root.member.name + (root.member.isSelf ? " (you)" : ""); variant: "medium"; Layout.fillWidth: true }
            AppText { text: root.member.email || "No address"; variant: "small"; Layout.fillWidth: true }
        }
        ColumnLayout {
            spacing: 1
            Layout.preferredWidth: 96
            Layout.fillWidth: false
            AppText { text: root.member.roleText; Layout.fillWidth: true }
            AppText {
                visible: root.member.exceptions > 0
                text: root.member.exceptions + (root.member.exceptions === 1 ? " exception" : " exceptions")
                variant: "small"
                Layout.fillWidth: true
            }
        }
        Item {
            Layout.preferredWidth: 74
            implicitHeight: 20
            StatusBadge { text: root.member.state; tone: root.member.tone }
        }
        IconButton { iconName: "pencil-simple"; tip: "Edit " + root.member.name; implicitWidth: 32; implicitHeight: 32; onClicked: root.editRequested() }
        IconButton {
            iconName: "trash"
            tip: root.member.invited ? "Withdraw the invitation" : "Remove " + root.member.name
            enabled: !root.member.isOwner && !root.member.isSelf && !Team.busy
            implicitWidth: 32
            implicitHeight: 32
            onClicked: root.removeRequested()
        }
    }
}
