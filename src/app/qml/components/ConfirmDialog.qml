import QtQuick
import QtQuick.Layouts
import Thalvorn

// Asks before something is lost; `text` names what. Enter does not confirm a loss: the safe button has the focus.
ModalBase {
    id: root

    property string title
    property string text
    property string confirmText: "Delete"
    property string cancelText: "Cancel"
    property bool danger: true
    property bool canConfirm: true
    default property alias extra: more.data
    signal confirmed()
    signal cancelled()

    function ask(newTitle, newText, newConfirm) {
        title = newTitle;
        text = newText;
        if (newConfirm)
            confirmText = newConfirm;
        open();
    }

    width: Math.min(440, parent ? parent.width - Theme.space8 : 440)
    implicitHeight: contentItem.implicitHeight
    onOpened: {
        cancelButton.forceActiveFocus(Qt.TabFocusReason);
        cancelButton.focusReason = Qt.TabFocusReason;  // it kept the focus since the last time, without a visible ring
    }

    contentItem: ColumnLayout {
        spacing: Theme.space3
        Accessible.role: Accessible.Dialog
        Accessible.name: root.title
        Keys.onEscapePressed: cancelButton.clicked()

        AppText {
            text: root.title
            variant: "subtitle"
            wrapMode: Text.Wrap
            Layout.fillWidth: true
            Layout.margins: Theme.sheetPadding
            Layout.bottomMargin: 0
        }
        AppText {
            text: root.text
            color: Theme.mute
            wrapMode: Text.Wrap
            Layout.fillWidth: true
            Layout.leftMargin: Theme.sheetPadding
            Layout.rightMargin: Theme.sheetPadding
        }
        ColumnLayout {
            id: more
            visible: children.length > 0
            Layout.fillWidth: true
            Layout.leftMargin: Theme.sheetPadding
            Layout.rightMargin: Theme.sheetPadding
        }
        RowLayout {
            spacing: Theme.space2
            Layout.margins: Theme.sheetPadding
            Layout.topMargin: Theme.space2
            Item { Layout.fillWidth: true }
            SecondaryButton { id: cancelButton; text: root.cancelText; onClicked: { root.close(); root.cancelled(); } }
            DangerButton { visible: root.danger; enabled: root.canConfirm; text: root.confirmText; onClicked: { root.close(); root.confirmed(); } }
            PrimaryButton { visible: !root.danger; enabled: root.canConfirm; text: root.confirmText; onClicked: { root.close(); root.confirmed(); } }
        }
    }
}
