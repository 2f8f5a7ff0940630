import QtQuick
import Thalvorn

// A short message that goes by itself.
Rectangle {
    id: root

    property string text
    property string tone
    signal done()

    width: Math.min(implicitWidth, parent ? parent.width - Theme.space8 : implicitWidth)
    implicitWidth: label.implicitWidth + 60
    implicitHeight: 44
    radius: Theme.radiusCard
    color: Theme.tipBg
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Timer {
        running: root.visible && !hover.hovered
        interval: Theme.toastTime
        onTriggered: root.done()
    }
    HoverHandler { id: hover }
    Icon {
        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        name: root.tone === "overdue" ? "warning" : root.tone === "soon" ? "warning-circle" : root.tone === "ok" ? "check-circle" : "info"
        color: Theme.tipInk
    }
    AppText {
        id: label
        anchors.left: parent.left
        anchors.leftMargin: 44
        width: root.width - 60
        anchors.verticalCenter: parent.verticalCenter
        text: root.text
        color: Theme.tipInk
    }
}
