import QtQuick
import Thalvorn

// A chip that opens a list of choices and shows the chosen one.
// options: [{value, text, icon?, separator?}]; `picked` reports a choice, `value` is set by the owner.
Chip {
    id: root

    property var options: []
    property var value
    property string label
    property bool mark: true
    signal picked(var value)

    readonly property var chosen: {
        for (const option of options)
            if (option.value === value)
                return option;
        return null;
    }

    text: chosen ? chosen.text : label
    trailingIcon: "caret-down"
    Accessible.role: Accessible.ComboBox
    Accessible.name: label ? label + ": " + text : text
    onClicked: menu.openBelow(root)
    Keys.onDownPressed: menu.openBelow(root)

    OptionMenu {
        id: menu
        options: root.options
        value: root.mark ? root.value : undefined
        onPicked: (value) => root.picked(value)
    }
}
