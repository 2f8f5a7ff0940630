import QtQuick
import QtQuick.Layouts
import Thalvorn

// Invites a person into the account.
FormSheet {
    id: root

    property string role: "editor"

    title: "Invite a member"
    subtitle: Team.seatsText
    actionText: "Send the invitation"
    actionIcon: "paper-plane-tilt"
    busy: Team.busy
    error: Team.error
    dirty: email.text.length > 0 || name.text.length > 0
    onAboutToShow: Team.clearErrors()
    onClosed: Team.clearErrors()
    onSaveRequested: Team.invite(email.text, name.text, role)

    Connections {
        target: Team
        function onDone() { root.close(); }
        function onWorkChanged() {
            if (Team.nameError)
                name.forceFocus();
            else if (Team.emailError)
                email.forceFocus();
        }
    }

    FieldRow {
        TextInputField {
            id: name
            label: "Name"
            required: true
            message: Team.nameError
            enabled: !root.busy
            onAccepted: email.forceFocus()
        }
        TextInputField {
            id: email
            label: "E-mail"
            required: true
            placeholder: "name@yacht.com"
            message: Team.emailError
            hint: "The person joins by signing in or up with this address."
            inputMethodHints: Qt.ImhEmailCharactersOnly | Qt.ImhNoAutoUppercase
            enabled: !root.busy
            onAccepted: root.save()
        }
    }
    RoleField { label: "Role"; value: root.role; enabled: !root.busy; onPicked: (value) => root.role = value }
}
