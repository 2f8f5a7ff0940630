import QtQuick
import QtQuick.Layouts
import Thalvorn

// Signing in, creating an account, or asking for a new password: one form that changes with `Account.step`.
ColumnLayout {
    id: root

    readonly property bool signingUp: Account.step === "signUp"
    readonly property bool forgotten: Account.step === "forgot"
    readonly property bool expired: Account.state === "expired"

    spacing: Theme.space3

    function submit() {
        if (forgotten)
            Account.sendReset(email.text);
        else if (signingUp)
            Account.signUp(email.text, password.text);
        else
            Account.signIn(email.text, password.text);
    }
    function focusFirst() {
        if (email.text)
            (forgotten ? email : password).forceFocus();
        else
            email.forceFocus();
    }

    Component.onCompleted: {
        email.text = Account.email;
        focusFirst();
    }
    Component.onDestruction: password.forget()
    Connections {
        target: Account
        function onStepChanged() {
            password.forget();
            root.focusFirst();
        }
        // What was refused is where the typing goes on.
        function onFormChanged() {
            if (Account.outcome)
                password.forget();
            if (Account.emailError)
                email.forceFocus();
            else if (Account.passwordError) {
                password.forceFocus();
                password.input.selectAll();
            }
        }
    }

    AppText {
        text: root.forgotten ? "Choose a new password" : root.signingUp ? "Create an account" : "Sign in"
        variant: "subtitle"
        Layout.fillWidth: true
        Accessible.role: Accessible.Heading
    }
    AppText {
        text: root.forgotten ? "We send a link to your address. It opens this program, which then asks for the new password."
              : root.signingUp ? "If someone has invited you, use the address of the invitation: you then join that account."
              : Account.hasServer ? "On the fleet server " + Account.serverText + "." : Account.serverText
        color: Theme.mute
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    ErrorBanner { text: Account.notice; tone: "soon"; dismissable: false; visible: text.length > 0 && Account.step === "signIn"; Layout.fillWidth: true }
    ErrorBanner { text: Account.error; dismissable: false; Layout.fillWidth: true }
    ErrorBanner { text: Account.outcome; tone: "ok"; dismissable: false; Layout.fillWidth: true }

    TextInputField {
        id: email
        label: "E-mail"
        iconName: "envelope"
        placeholder: "name@yacht.com"
        required: true
        message: Account.emailError
        enabled: Account.work === ""
        inputMethodHints: Qt.ImhEmailCharactersOnly | Qt.ImhNoAutoUppercase
        onAccepted: root.forgotten ? root.submit() : password.forceFocus()
    }
    PasswordField {
        id: password
        visible: !root.forgotten
        message: Account.passwordError
        hint: root.signingUp ? "At least 8 characters; a few words are easier to remember than signs." : ""
        enabled: Account.work === ""
        onAccepted: root.submit()
    }
    PrimaryButton {
        text: Account.work ? Account.work : root.forgotten ? "Send the link" : root.signingUp ? "Create the account" : "Sign in"
        iconName: root.forgotten ? "paper-plane-tilt" : root.signingUp ? "user-plus" : "sign-in"
        busy: Account.work !== ""
        enabled: Account.work === ""
        Layout.fillWidth: true
        Layout.topMargin: Theme.space1
        onClicked: root.submit()
    }
    SecondaryButton {
        visible: root.expired && Account.step === "signIn"
        text: "Work offline as " + Account.name
        iconName: "cloud-slash"
        enabled: Account.work === ""
        tip: "Everything can be done; what you change waits until you sign in."
        Layout.fillWidth: true
        onClicked: Account.workOffline()
    }
    RowLayout {
        spacing: Theme.space4
        Layout.topMargin: Theme.space1
        LinkButton { text: Account.step === "signIn" ? "Back" : "Sign in instead"; iconName: "arrow-left"; enabled: Account.work === ""; onClicked: Account.step = Account.step === "signIn" ? "choice" : "signIn" }
        Item { Layout.fillWidth: true }
        LinkButton { visible: Account.step === "signIn"; text: "Create an account"; enabled: Account.work === ""; onClicked: Account.step = "signUp" }
        LinkButton { visible: Account.step !== "forgot"; text: "Forgot password?"; enabled: Account.work === ""; onClicked: Account.step = "forgot" }
    }
}
