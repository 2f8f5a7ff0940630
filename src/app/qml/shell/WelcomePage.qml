import QtQuick
import QtQuick.Layouts
import Thalvorn

// Where a computer without a fleet begins.
Rectangle {
    id: root

    property bool account: false

    color: Theme.side
    Accessible.role: Accessible.Pane
    Accessible.name: "Welcome"

    Rectangle {
        anchors.centerIn: parent
        width: Math.min(492, parent.width - Theme.space8)
        height: column.implicitHeight + Theme.space8 * 2
        radius: Theme.radiusSheet
        color: Theme.card

        ColumnLayout {
            id: column
            anchors.centerIn: parent
            width: parent.width - Theme.space8 * 2
            spacing: Theme.space3

            Icon { name: "anchor"; size: 36; color: Theme.accent; Layout.alignment: Qt.AlignHCenter }
            AppText { text: "Thalvorn Yacht Systems"; variant: "title"; Layout.alignment: Qt.AlignHCenter }
            AppText {
                text: "Know what is due, record what was done, and find it all again."
                color: Theme.mute
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
                Layout.fillWidth: true
                Layout.bottomMargin: Theme.space3
            }
            PrimaryButton {
                text: "Explore the demo fleet"
                iconName: "boat"
                focus: true
                Layout.fillWidth: true
                onClicked: App.post("exploreDemo")
            }
            SecondaryButton {
                text: "Keep a fleet on this computer only"
                iconName: "hard-drives"
                Layout.fillWidth: true
                onClicked: App.post("startLocalFleet")
            }
            Divider { Layout.fillWidth: true; Layout.topMargin: Theme.space2; Layout.bottomMargin: Theme.space2 }
            RowLayout {
                spacing: Theme.space2
                SecondaryButton { text: "Sign in"; iconName: "sign-in"; Layout.fillWidth: true; Layout.preferredWidth: 10; onClicked: root.account = true }
                SecondaryButton { text: "Create an account"; iconName: "user"; Layout.fillWidth: true; Layout.preferredWidth: 10; onClicked: root.account = true }
            }
            ErrorBanner {
                text: root.account ? "Accounts need the connection to the fleet server, and none is set up on this computer. A fleet kept on this computer needs no account." : ""
                tone: "soon"
                Layout.fillWidth: true
                onDismissed: root.account = false
            }
        }
    }
}
