import QtQuick
import Thalvorn

// How the exchange with the fleet server stands, at the foot of the sidebar; opens the sync page.
Item {
    id: root

    property bool narrow: false
    readonly property bool needsHand: Sync.state === "signIn" || Sync.state === "problem"
    readonly property string words: Account.readsKeptFleet ? "Kept copy, read only" : Sync.text + (Sync.openConflicts > 0 ? " · " + Sync.openConflicts + (Sync.openConflicts === 1 ? " conflict" : " conflicts") : "")

    implicitHeight: 34
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: Account.readsKeptFleet ? words : "Sync: " + words
    Accessible.onPressAction: open()
    Keys.onReturnPressed: open()
    Keys.onSpacePressed: open()

    function open() {
        if (Account.readsKeptFleet)
            App.open("account");
        else if (Sync.state === "signIn")
            Account.showSignIn();
        else
            App.open("sync");
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusControl
        color: hover.hovered ? Theme.sideHover : "transparent"
        border.width: root.activeFocus ? 2 : 0
        border.color: Theme.sideAccent
    }
    Icon {
        anchors.left: parent.left
        anchors.leftMargin: root.narrow ? (parent.width - width) / 2 : 10
        anchors.verticalCenter: parent.verticalCenter
        name: Account.readsKeptFleet ? "lock-key" : Sync.state === "syncing" ? "arrows-clockwise" : Sync.state === "current" ? "cloud-check" : Sync.state === "waiting" ? "cloud-arrow-up" : "cloud-slash"
        size: 17
        color: root.needsHand ? Theme.sideSoonInk : Theme.sideMute
    }
    Text {
        visible: !root.narrow
        anchors.left: parent.left
        anchors.leftMargin: 38
        width: parent.width - 38
        anchors.verticalCenter: parent.verticalCenter
        text: root.words
        font: Theme.fonts.small
        color: root.needsHand || Sync.openConflicts > 0 ? Theme.sideSoonInk : Theme.sideMute
        elide: Text.ElideRight
    }
    HoverHandler { id: hover; cursorShape: Qt.PointingHandCursor }
    TapHandler { onTapped: root.open() }
    HoverTip { text: Account.readsKeptFleet ? "The fleet of an account you have left" : (root.narrow ? root.words + ". " : "") + Sync.detail }
}
