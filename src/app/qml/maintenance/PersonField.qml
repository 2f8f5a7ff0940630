import QtQuick
import Thalvorn

// A name: typed freely, or picked from those that are known. people: [{name, detail}].
TextInputField {
    id: root

    property var people: []

    trailingIcon: people.length > 0 ? "users" : ""
    trailingTip: "Pick a name"
    onTrailingClicked: menu.openBelow(input)
    input.Keys.onDownPressed: if (people.length > 0) menu.openBelow(input)

    OptionMenu {
        id: menu
        options: root.people.map((person) => ({ value: person.name, text: person.detail ? person.name + " · " + person.detail : person.name, icon: "user" }))
        onPicked: (value) => {
            root.replaceText(value);
            root.edited(value);
            root.forceFocus();
        }
    }
}
