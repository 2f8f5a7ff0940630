import QtQuick
import QtQuick.Layouts
import Thalvorn

// Who is signed in, the account, and the people in it.
Page {
    id: root

    readonly property bool signedIn: Account.state !== "none"
    readonly property bool expired: Account.state === "expired"

    title: "Account"
    note: signedIn ? Account.email : ""
    padding: 0
    commands: Team.mayManage ? ["newRecord"] : []
    actions: [PrimaryButton { visible: Team.mayManage; text: "Invite"; iconName: "user-plus"; tip: "Ctrl+N"; enabled: !root.expired; onClicked: root.posted("newRecord") }]
    onPosted: (name) => { if (name === "newRecord" && Team.mayManage && !root.expired) App.openSheet("account/InviteSheet.qml"); }
    onOpened: Team.refresh()
    help: Component {
        AppText {
            text: "All records belong to the account, not to a person. Its administrators invite people, give each a role, and can narrow single modules. Whoever leaves the team loses access; what he recorded stays."
            wrapMode: Text.Wrap
        }
    }

    EmptyState {
        visible: !root.signedIn
        anchors.centerIn: parent
        width: Math.min(520, parent.width)
        icon: "users"
        title: Account.readsKeptFleet ? "The fleet of an account you have left" : Fleet.demo ? "The demo fleet belongs to nobody" : "This fleet stays on this computer"
        text: Account.readsKeptFleet ? "It stays on this computer as it last was here. It can be read, printed and exported; it is not changed any more and goes to nobody."
            : Account.awayFromOwn ? "You are signed in as " + Account.email + ", whose own fleet is not the one in view."
            : Account.hasServer ? "Sign in, or create an account, to share a fleet with your crew: everyone works offline, and all changes come together." : Account.serverText
        actionText: Account.awayFromOwn ? "Back to your fleet" : Account.hasServer ? "Sign in" : ""
        actionIcon: Account.awayFromOwn ? "arrow-left" : "sign-in"
        secondText: Account.hasServer && !Account.awayFromOwn ? "Create an account" : ""
        onAction: Account.awayFromOwn ? Account.openOwnFleet() : Account.showSignIn("signIn")
        onSecond: Account.showSignIn("signUp")
    }

    FormScroll {
        visible: root.signedIn
        anchors.fill: parent

        ErrorBanner {
            title: "Your session has ended"
            text: root.expired ? "You work offline: everything you change waits on this computer until you sign in again." : ""
            tone: "soon"
            actionText: "Sign in"
            dismissable: false
            onAction: Account.showSignIn()
            Layout.fillWidth: true
        }
        ErrorBanner {
            title: "You are no longer in this account"
            text: Account.refusal ? Account.refusal + " What is on this computer can still be read, and what you changed waits." : ""
            tone: "soon"
            actionText: root.expired ? "" : "Ask again"
            dismissable: false
            onAction: Sync.syncNow()
            Layout.fillWidth: true
        }
        ErrorBanner { text: Team.error; onDismissed: Team.clearErrors(); Layout.fillWidth: true }

        GridLayout {
            columns: root.width >= 980 ? 2 : 1
            columnSpacing: Theme.space4
            rowSpacing: Theme.space4
            Layout.fillWidth: true

            ColumnLayout {
                spacing: Theme.space4
                Layout.fillWidth: true
                Layout.preferredWidth: 100
                Layout.alignment: Qt.AlignTop

                Card {
                    title: "You"
                    Layout.fillWidth: true
                    RowLayout {
                        spacing: Theme.space4
                        Fact { label: "Signed in as"; value: Account.name }
                        Fact { label: "Role"; value: Team.role }
                    }
                    Fact { label: "E-mail"; value: Account.email }
                    Flow {
                        spacing: Theme.space2
                        Layout.fillWidth: true
                        SecondaryButton { text: "Change password…"; iconName: "key"; enabled: !root.expired; onClicked: App.openSheet("account/ChangePasswordSheet.qml") }
                        SecondaryButton { text: "Sign out"; iconName: "sign-out"; onClicked: App.post("signOutRequested") }
                    }
                }
                Card {
                    title: "Account"
                    Layout.fillWidth: true
                    ComboField {
                        visible: Team.accounts.length > 1
                        label: "Account in view"
                        hint: "You are a member of several accounts. Each has its own fleet."
                        options: Team.accounts
                        value: Team.accountId
                        readOnly: Team.busy || root.expired
                        onPicked: (value) => Team.openAccount(value)
                        Layout.fillWidth: true
                    }
                    RowLayout {
                        spacing: Theme.space4
                        Fact { label: "Plan"; value: Team.plan }
                        Fact { label: "Fleet server"; value: Account.serverText }
                    }
                    Fact { label: "Sync"; value: Sync.text; note: Sync.detail }
                    Flow {
                        spacing: Theme.space2
                        Layout.fillWidth: true
                        SecondaryButton { text: "Sync status"; iconName: "arrows-clockwise"; onClicked: App.open("sync") }
                        SecondaryButton {
                            visible: Team.hasLocalFleet
                            text: "Move the fleet of this computer into this account…"
                            iconName: "cloud-arrow-up"
                            busy: Team.busy
                            enabled: !Team.busy
                            onClicked: adopt.open()
                        }
                    }
                }
                Card {
                    visible: Account.keptFleets.length > 0
                    title: "Fleets of accounts you have left"
                    note: "· read only"
                    Layout.fillWidth: true
                    Repeater {
                        model: Account.keptFleets
                        delegate: RowLayout {
                            required property var modelData
                            spacing: Theme.space3
                            Layout.fillWidth: true
                            Fact { label: modelData.since ? "Left on this computer " + Format.dateTime(modelData.since) : "Left on this computer"; value: modelData.text }
                            SecondaryButton { text: "Read"; tip: "Open the fleet of " + modelData.text + " to be read"; iconName: "eye"; onClicked: Account.openKeptFleet(modelData.prefix) }
                        }
                    }
                }
            }

            ColumnLayout {
                spacing: Theme.space4
                Layout.fillWidth: true
                Layout.preferredWidth: 120
                Layout.alignment: Qt.AlignTop

                Card {
                    title: "Team"
                    note: Team.mayManage ? "· " + Team.seatsText : ""
                    Layout.fillWidth: true
                    AppText {
                        visible: !Team.mayManage
                        text: "The administrators of the account manage the team. Ask one of them for another role or for a further member."
                        color: Theme.mute
                        wrapMode: Text.Wrap
                        Layout.fillWidth: true
                    }
                    ColumnLayout {
                        visible: Team.mayManage
                        spacing: 0
                        Layout.fillWidth: true
                        Repeater {
                            model: Team.members
                            delegate: MemberRow {
                                required property var modelData
                                member: modelData
                                Layout.fillWidth: true
                                onEditRequested: App.openSheet("account/MemberSheet.qml", { memberId: modelData.id })
                                onRemoveRequested: {
                                    remove.memberId = modelData.id;
                                    remove.ask(modelData.invited ? "Withdraw the invitation?" : "Remove " + modelData.name + "?",
                                               modelData.invited ? modelData.email + " can no longer join with it. The seat becomes free."
                                                                 : modelData.name + " loses access to this account at once. What was recorded under this name stays; the seat becomes free.",
                                               modelData.invited ? "Withdraw" : "Remove");
                                }
                            }
                        }
                    }
                }
                Card {
                    title: "What each role may do"
                    Layout.fillWidth: true
                    Repeater {
                        model: Team.roles
                        delegate: ColumnLayout {
                            required property var modelData
                            spacing: 1
                            Layout.fillWidth: true
                            AppText { text: modelData.text; variant: "medium" }
                            AppText { text: modelData.detail; color: Theme.mute; wrapMode: Text.Wrap; Layout.fillWidth: true }
                        }
                    }
                }
            }
        }
    }

    ConfirmDialog { id: remove; property string memberId; onConfirmed: Team.remove(memberId) }
    ConfirmDialog {
        id: adopt
        danger: false
        title: "Move the fleet of this computer into this account?"
        text: "Every vessel kept on this computer, with its tasks, history and other records, is added to the account and sent to the fleet server, where the whole team sees it. The fleet on this computer is kept as it is."
        confirmText: "Move it"
        onConfirmed: Team.adoptLocalFleet()
    }
}
