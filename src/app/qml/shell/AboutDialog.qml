import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// What this program is, and whose work it carries.
ModalBase {
    id: root

    width: 420
    implicitHeight: contentItem.implicitHeight
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    onOpened: done.forceActiveFocus()

    contentItem: ColumnLayout {
        spacing: Theme.space2
        Accessible.role: Accessible.Dialog
        Accessible.name: "About Thalvorn Yacht Systems"
        Icon { name: "anchor"; size: 36; color: Theme.accent; Layout.alignment: Qt.AlignHCenter; Layout.topMargin: Theme.space6 }
        AppText { text: "Thalvorn Yacht Systems"; variant: "title"; Layout.alignment: Qt.AlignHCenter }
        AppText { text: "Version " + App.version; variant: "small"; Layout.alignment: Qt.AlignHCenter }
        AppText {
            text: "The maintenance programme, service history and records of your yachts. Set in Inter (SIL Open Font License); icons by Phosphor (MIT)."
            color: Theme.mute
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            Layout.fillWidth: true
            Layout.margins: Theme.sheetPadding
        }
        SecondaryButton { id: done; text: "Close"; Layout.alignment: Qt.AlignHCenter; Layout.bottomMargin: Theme.sheetPadding; onClicked: root.close() }
    }
}
