import QtQuick
import QtQuick.Layouts
import Thalvorn

// What went wrong, what was kept, and what to do. Hidden while `text` is empty. `tone` "soon" makes it a warning.
Rectangle {
    id: root

    property string title
    property string text
    property string tone: "overdue"
    property string actionText
    property bool dismissable: true
    signal action()
    signal dismissed()

    visible: text.length > 0
    implicitHeight: visible ? row.implicitHeight + Theme.space3 * 2 : 0
    implicitWidth: 400
    radius: Theme.radiusControl
    color: Theme.statusBg(tone)
    border.width: Theme.hairline
    border.color: Theme.statusInk(tone)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: title ? title + ". " + text : text

    RowLayout {
        id: row
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.leftMargin: Theme.space3
        anchors.rightMargin: Theme.space2
        spacing: Theme.space3
        Icon {
            name: root.tone === "ok" ? "check-circle" : root.tone === "accent" ? "info" : "warning"
            color: Theme.statusInk(root.tone)
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 1
        }
        ColumnLayout {
            spacing: 2
            Layout.fillWidth: true
            AppText { visible: root.title.length > 0; text: root.title; variant: "strong"; wrapMode: Text.Wrap; Layout.fillWidth: true }
            AppText { text: root.text; wrapMode: Text.Wrap; Layout.fillWidth: true }
        }
        SecondaryButton { visible: root.actionText.length > 0; text: root.actionText; implicitHeight: 32; onClicked: root.action() }
        IconButton { visible: root.dismissable; iconName: "x"; tip: "Dismiss"; implicitHeight: 32; implicitWidth: 32; onClicked: root.dismissed() }
    }
}
