import QtQuick
import QtQuick.Layouts
import Thalvorn

// How the exchange with the fleet server stands: what waits, what failed and why, conflicts, and the log.
Page {
    id: root

    readonly property bool lost: Sync.state === "offline" || Sync.state === "problem"
    property bool logShown: false

    title: "Sync"
    note: Sync.shown ? Sync.text : ""
    padding: 0
    actions: [
        SecondaryButton { visible: Sync.state === "signIn"; text: "Sign in"; iconName: "sign-in"; onClicked: Account.showSignIn() },
        PrimaryButton {
            visible: Sync.shown
            text: "Sync Now"
            iconName: "arrows-clockwise"
            tip: "F5"
            busy: Sync.state === "syncing"
            enabled: Sync.state !== "syncing" && Sync.state !== "signIn"
            onClicked: App.post("thalvornRequestSync")
        }
    ]
    help: Component {
        AppText {
            text: "Every change is on this computer’s disk first, and is sent as soon as there is a connection. When two people change one record at once, their changes are merged field by field; where both changed the same field, the later one stands and the other is kept under “Conflicts”."
            wrapMode: Text.Wrap
        }
    }
    Binding { target: Sync; property: "watched"; value: root.current }

    EmptyState {
        visible: !Sync.shown
        anchors.centerIn: parent
        width: Math.min(520, parent.width)
        icon: "arrows-clockwise"
        title: "Nothing to sync"
        text: Sync.hasServer ? "This fleet stays on this computer. A fleet in an account is shared with your crew." : Account.serverText
        actionText: "Account"
        actionIcon: "users"
        onAction: App.post("openManageAccount")
    }

    FormScroll {
        visible: Sync.shown
        anchors.fill: parent
        maximumWidth: 980

        Card {
            Layout.fillWidth: true
            RowLayout {
                spacing: Theme.space4
                Icon {
                    name: root.lost || Sync.state === "signIn" ? "cloud-slash" : Sync.state === "current" ? "cloud-check" : "cloud-arrow-up"
                    size: 28
                    color: Sync.state === "problem" ? Theme.soon : Sync.state === "current" ? Theme.ok : Theme.mute
                }
                ColumnLayout {
                    spacing: 1
                    Layout.fillWidth: true
                    AppText { text: Sync.text; variant: "strong" }
                    AppText { text: Sync.running || Sync.detail; color: Theme.mute; wrapMode: Text.Wrap; Layout.fillWidth: true }
                }
                Fact {
                    label: "Last complete run"
                    value: Sync.lastRun ? Format.dateTime(Sync.lastRun) : "Never"
                    Layout.fillWidth: false
                    Layout.preferredWidth: 150
                }
            }
        }

        Card {
            visible: Sync.problems.length > 0
            title: "What could not be synced"
            Layout.fillWidth: true
            Repeater {
                model: Sync.problems
                delegate: RowLayout {
                    required property var modelData
                    spacing: Theme.space3
                    Layout.fillWidth: true
                    Icon { name: "warning"; color: Theme.soon; Layout.alignment: Qt.AlignTop }
                    ColumnLayout {
                        spacing: 1
                        Layout.fillWidth: true
                        AppText { text: modelData.where + (modelData.record ? " “" + modelData.record + "”" : ""); variant: "medium"; Layout.fillWidth: true }
                        AppText { text: modelData.text; color: Theme.mute; wrapMode: Text.Wrap; Layout.fillWidth: true }
                    }
                }
            }
        }

        Card {
            title: "Waiting to be sent"
            Layout.fillWidth: true
            AppText { visible: Sync.waiting.length === 0; text: "Nothing waits."; color: Theme.mute }
            Repeater {
                model: Sync.waiting
                delegate: RowLayout {
                    required property var modelData
                    Layout.fillWidth: true
                    AppText { text: modelData.text; Layout.fillWidth: true }
                    AppText { text: Format.number(modelData.count, 0); variant: "medium" }
                }
            }
        }

        Card {
            visible: Sync.files.length > 0
            title: "Photos and papers"
            note: "· not sent yet"
            Layout.fillWidth: true
            Repeater {
                model: Sync.files
                delegate: RowLayout {
                    required property var modelData
                    readonly property string what: modelData.kind + (modelData.name ? " of “" + modelData.name + "”" : "")
                    spacing: Theme.space3
                    Layout.fillWidth: true
                    Icon { name: modelData.failed ? "warning" : "cloud-arrow-up"; color: modelData.failed ? Theme.soon : Theme.mute; Layout.alignment: Qt.AlignTop }
                    ColumnLayout {
                        spacing: 1
                        Layout.fillWidth: true
                        AppText { text: what; variant: "medium"; Layout.fillWidth: true }
                        AppText { text: modelData.text; color: Theme.mute; wrapMode: Text.Wrap; Layout.fillWidth: true }
                    }
                    SecondaryButton { text: "Try again"; tip: "Send the " + what + " now"; enabled: Sync.state !== "signIn"; onClicked: Sync.retryFile(modelData.id) }
                    SecondaryButton {
                        text: "Remove"
                        tip: "Do not send the " + what
                        onClicked: {
                            removeFile.fileId = modelData.id;
                            removeFile.ask("Do not send this file?", "The " + what + " stays on this computer. The others of the account will not see it.", "Remove");
                        }
                    }
                }
            }
        }

        Card {
            title: "Connection"
            Layout.fillWidth: true
            ComboField {
                label: "Metered connection"
                options: Sync.meteredChoices
                value: Sync.metered
                hint: Sync.meteredText
                onPicked: (value) => Sync.metered = value
                Layout.fillWidth: true
            }
        }

        AppText { visible: Sync.conflicts.length > 0; text: "Conflicts"; variant: "subtitle"; Accessible.role: Accessible.Heading }
        Repeater {
            model: Sync.conflicts
            delegate: ConflictCard {
                required property var modelData
                conflict: modelData
                Layout.fillWidth: true
            }
        }

        Card {
            title: "Log"
            note: "· of this session, newest first"
            linkText: root.logShown ? "Hide" : "Show"
            onLinkClicked: root.logShown = !root.logShown
            Layout.fillWidth: true
            ListView {
                id: lines
                visible: root.logShown
                implicitHeight: Math.min(360, contentHeight)
                clip: true
                model: root.logShown ? Sync.log : []
                boundsBehavior: Flickable.StopAtBounds
                activeFocusOnTab: true
                Layout.fillWidth: true
                Accessible.role: Accessible.List
                Accessible.name: "Log"
                delegate: RowLayout {
                    required property var modelData
                    width: lines.width
                    spacing: Theme.space3
                    AppText { text: Format.dateTime(modelData.at); variant: "small"; Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 120 }
                    AppText { text: modelData.text; variant: "small"; color: modelData.problem ? Theme.soon : Theme.mute; wrapMode: Text.Wrap; Layout.fillWidth: true }
                }
            }
            LinkButton {
                visible: root.logShown
                text: "Copy the log"
                iconName: "copy"
                onClicked: {
                    App.copyText(Sync.logText());
                    App.toast("The log is on the clipboard.");
                }
            }
        }
    }

    ConfirmDialog { id: removeFile; property string fileId; onConfirmed: Sync.removeFile(fileId) }
}
