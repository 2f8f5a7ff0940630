import QtQuick
import Thalvorn

// What was just done, and the way back. It goes by itself after a while, not while the pointer or the focus is on it.
Rectangle {
    id: root

    property string text
    signal undone()
    signal done()

    width: Math.min(implicitWidth, parent ? parent.width - Theme.space8 : implicitWidth)
    implicitWidth: label.implicitWidth + undo.implicitWidth + close.width + 56
    implicitHeight: 44
    radius: Theme.radiusCard
    color: Theme.tipBg
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    function restart() {
        timer.restart();
    }

    Timer {
        id: timer
        running: root.visible && !hover.hovered && !undo.activeFocus
        interval: Theme.undoTime
        onTriggered: root.done()
    }
    HoverHandler { id: hover }
    AppText {
        id: label
        anchors.left: parent.left
        anchors.leftMargin: 18
        width: root.width - undo.width - close.width - 56
        anchors.verticalCenter: parent.verticalCenter
        text: root.text
        color: Theme.tipInk
    }
    LinkButton {
        id: undo
        anchors.right: close.left
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        text: "Undo"
        ink: Theme.sideAccent
        onClicked: root.undone()
    }
    IconButton {
        id: close
        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 30
        implicitHeight: 30
        iconName: "x"
        tip: "Close"
        ink: Theme.tipInk
        fillHover: Theme.tipHover
        onClicked: root.done()
    }
}
