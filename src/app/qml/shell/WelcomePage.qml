import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// Where a computer without a fleet begins, and where a user whose session has ended comes back in.
Rectangle {
    id: root

    readonly property bool choosing: Account.step === "choice"

    color: Theme.side
    Accessible.role: Accessible.Pane
    Accessible.name: "Welcome"
    Keys.onEscapePressed: if (!choosing && Account.work === "") Account.step = "choice"

    function enter(step) {
        if (Account.hasServer)
            Account.step = step;
        else
            Account.showSignIn(step);
    }

    Flickable {
        anchors.fill: parent
        contentWidth: width
        contentHeight: Math.max(height, card.height + Theme.space8)
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: AppScrollBar {}

        Rectangle {
            id: card
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

                Loader {
                    active: !root.choosing
                    visible: active
                    source: active ? "../account/SignInForm.qml" : ""
                    Layout.fillWidth: true
                }

                ColumnLayout {
                    visible: root.choosing
                    spacing: Theme.space3
                    Layout.fillWidth: true
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
                        SecondaryButton { text: "Sign in"; iconName: "sign-in"; Layout.fillWidth: true; Layout.preferredWidth: 10; onClicked: root.enter("signIn") }
                        SecondaryButton { text: "Create an account"; iconName: "user"; Layout.fillWidth: true; Layout.preferredWidth: 10; onClicked: root.enter("signUp") }
                    }
                    SecondaryButton {
                        visible: Account.state === "expired"
                        text: "Work offline as " + Account.name
                        iconName: "cloud-slash"
                        Layout.fillWidth: true
                        onClicked: Account.workOffline()
                    }
                    ErrorBanner {
                        text: Account.error
                        tone: "soon"
                        Layout.fillWidth: true
                        onDismissed: Account.clearForm()
                    }
                }
            }
        }
    }
}
