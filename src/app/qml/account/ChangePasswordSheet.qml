import QtQuick
import QtQuick.Layouts
import Thalvorn

// Chooses a new password. After a password mail, or where an administrator gave the first one, it must be done.
FormSheet {
    id: root

    title: compulsory ? "Choose a new password" : "Change the password"
    subtitle: Account.email
    actionText: "Change the password"
    actionIcon: "key"
    busy: Account.work !== ""
    error: Account.error
    dirty: !compulsory && (password.text.length > 0 || again.text.length > 0)
    onAboutToShow: Account.clearForm()
    onSaveRequested: Account.changePassword(password.text, again.text)
    onClosed: {
        password.forget();
        again.forget();
        Account.clearForm();
    }
    footer: SecondaryButton {
        visible: root.compulsory
        text: "Sign out instead"
        enabled: !root.busy
        onClicked: Account.requestSignOut()
    }

    Connections {
        target: App
        function onPhaseChanged() { if (App.phase === "welcome") root.close(); }
    }

    Connections {
        target: Account
        function onPasswordChanged() { root.close(); }
        function onFormChanged() {
            if (Account.passwordError)
                password.forceFocus();
            else if (Account.againError)
                again.forceFocus();
        }
    }

    AppText {
        text: root.compulsory ? "Your password has to be changed before you go on." : "You stay signed in here; other devices have to sign in again."
        color: Theme.mute
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    FieldRow {
        minimumColumn: 240
        PasswordField {
            id: password
            label: "New password"
            hint: "At least 8 characters; a few words are easier to remember than signs."
            message: Account.passwordError
            enabled: !root.busy
            onAccepted: again.forceFocus()
        }
        PasswordField {
            id: again
            label: "The same again"
            message: Account.againError
            enabled: !root.busy
            onAccepted: root.save()
        }
    }
}
