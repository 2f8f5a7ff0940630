import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// A chip that opens a list of choices of which any number may be ticked. options: [{value, text}].
Chip {
    id: root

    property string label
    property var options: []
    property var values: []
    signal picked(var values)

    readonly property string shown: values.length === 1 ? textOf(values[0]) : values.length > 1 ? label + ": " + values.length : label

    function textOf(value) {
        return options.find((option) => option.value === value)?.text ?? value;
    }
    function toggle(value) {
        picked(values.includes(value) ? values.filter((one) => one !== value) : values.concat([value]));
    }

    text: shown
    iconName: "funnel-simple"
    trailingIcon: "caret-down"
    checked: values.length > 0
    Accessible.role: Accessible.ComboBox
    Accessible.name: label + ": " + (values.length > 0 ? values.map(textOf).join(", ") : "all")
    onClicked: popup.open()
    Keys.onDownPressed: popup.open()

    T.Popup {
        id: popup
        y: root.height + Theme.space1
        padding: Theme.space3
        margins: Theme.space2
        implicitWidth: Math.max(200, contentItem.implicitWidth + leftPadding + rightPadding)
        implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
        focus: true
        onOpened: column.nextItemInFocusChain(true)?.forceActiveFocus(Qt.TabFocusReason)
        contentItem: ColumnLayout {
            id: column
            spacing: Theme.space1
            Repeater {
                model: root.options.length
                delegate: CheckField {
                    required property int index
                    readonly property var option: root.options[index] ?? ({ value: "", text: "" })
                    text: option.text
                    checked: root.values.includes(option.value)
                    Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                    Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                    onToggled: root.toggle(option.value)
                }
            }
            LinkButton { enabled: root.values.length > 0; text: "Show all"; onClicked: root.picked([]) }
        }
        background: Item {
            SheetShadow { anchors.fill: parent; radius: 10 }
            Rectangle {
                anchors.fill: parent
                radius: 10
                color: Theme.raised
                border.width: Theme.hairline
                border.color: Theme.controlLine
            }
        }
    }
}
