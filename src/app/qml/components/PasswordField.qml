import QtQuick
import Thalvorn

// A password, hidden until it is asked to be shown. It leaves memory with `forget()`.
TextInputField {
    id: root

    property bool revealed: false

    function forget() {
        input.clear();
        revealed = false;
    }

    label: "Password"
    required: true
    iconName: "key"
    echoMode: revealed ? TextInput.Normal : TextInput.Password
    inputMethodHints: Qt.ImhSensitiveData | Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText
    trailingIcon: revealed ? "eye-slash" : "eye"
    trailingTip: revealed ? "Hide the password (Alt+V)" : "Show the password (Alt+V)"
    onTrailingClicked: revealed = !revealed
    input.Keys.onPressed: (event) => {
        if (event.key === Qt.Key_V && event.modifiers === Qt.AltModifier) {
            revealed = !revealed;
            event.accepted = true;
        }
    }
}
