import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// A chip that narrows a list to some days, both ends included; an end left open is undefined.
Chip {
    id: root

    property var first
    property var last
    signal picked(var first, var last)

    readonly property string firstText: first ? Format.date(first) : ""
    readonly property string lastText: last ? Format.date(last) : ""

    text: first && last ? (firstText === lastText ? firstText : firstText + " – " + lastText) : first ? "From " + firstText : last ? "Until " + lastText : "Period"
    iconName: "calendar-blank"
    trailingIcon: "caret-down"
    checked: first !== undefined || last !== undefined
    Accessible.role: Accessible.ComboBox
    Accessible.name: "Period: " + (checked ? text : "all")
    onClicked: popup.open()
    Keys.onDownPressed: popup.open()

    T.Popup {
        id: popup
        y: root.height + Theme.space1
        width: 380
        padding: Theme.space4
        margins: Theme.space2
        implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
        focus: true
        onOpened: firstField.forceFocus()
        contentItem: ColumnLayout {
            spacing: Theme.space3
            RowLayout {
                spacing: Theme.space3
                Layout.fillWidth: true
                DateField { id: firstField; label: "From"; optional: true; date: root.first; onPicked: (date) => root.picked(date, root.last) }
                DateField { label: "Until"; optional: true; date: root.last; onPicked: (date) => root.picked(root.first, date) }
            }
            Flow {
                spacing: Theme.space2
                Layout.fillWidth: true
                Repeater {
                    model: Format.periods()
                    delegate: Chip {
                        required property var modelData
                        text: modelData.text
                        onClicked: { root.picked(modelData.first, modelData.last); popup.close(); }
                    }
                }
            }
            LinkButton { enabled: root.checked; text: "All days"; onClicked: { root.picked(undefined, undefined); popup.close(); } }
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
