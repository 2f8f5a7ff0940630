import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// Shown in the program's place when its store cannot be opened. Nothing is changed on disk.
T.ApplicationWindow {
    id: window

    width: 760
    height: 480
    title: "Thalvorn Yacht Systems"
    color: Theme.bg

    Card {
        anchors.centerIn: parent
        width: Math.min(520, parent.width - Theme.space8)
        padding: Theme.space6

        Icon { name: "warning"; size: 32; color: Theme.soon }
        AppText { text: "Your records cannot be opened"; variant: "title"; wrapMode: Text.Wrap; Layout.fillWidth: true }
        AppText { text: App.problem; wrapMode: Text.Wrap; Layout.fillWidth: true }
        AppText {
            text: "Nothing was changed. A backup can be put back with “thalvorn-cli restore FILE”."
            color: Theme.mute
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        RowLayout {
            spacing: Theme.space2
            Layout.topMargin: Theme.space2
            SecondaryButton { text: "Copy the message"; iconName: "copy"; onClicked: App.copyText(App.problem) }
            Item { Layout.fillWidth: true }
            PrimaryButton { text: "Quit"; focus: true; onClicked: window.close() }
        }
    }
}
