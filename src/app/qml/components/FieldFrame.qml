import QtQuick
import QtQuick.Layouts
import Thalvorn

// Label above, the control, and a hint or message below: the frame of every form field.
ColumnLayout {
    id: root

    property string label
    property bool required: false
    property string hint
    property string message
    property string tone: "overdue"
    property bool stretch: false   // the control takes the height that is left
    default property alias control: slot.data

    property bool faulty: false    // marked as wrong, in words that stand elsewhere

    readonly property bool wrong: faulty || (message.length > 0 && tone === "overdue")

    spacing: 5
    Layout.fillWidth: true
    Layout.preferredWidth: 100
    Layout.alignment: Qt.AlignTop

    Row {
        visible: root.label.length > 0
        spacing: 3
        Layout.fillWidth: true
        AppText {
            text: root.label
            variant: "smallMedium"
            width: Math.min(implicitWidth, root.width - (root.required ? 12 : 0))
            Accessible.ignored: true
        }
        Text {
            visible: root.required
            text: "*"
            font: Theme.fonts.smallMedium
            color: Theme.overdue
            Accessible.ignored: true
        }
    }

    Item {
        id: slot
        Layout.fillWidth: true
        Layout.fillHeight: root.stretch
        implicitHeight: children.length > 0 ? children[0].implicitHeight : 0
        implicitWidth: children.length > 0 ? children[0].implicitWidth : 0
    }

    RowLayout {
        visible: text.text.length > 0
        spacing: 5
        Layout.fillWidth: true
        Icon {
            visible: root.message.length > 0
            name: root.wrong ? "warning-circle" : "info"
            size: 14
            color: text.color
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 1
        }
        AppText {
            id: text
            text: root.message || root.hint
            variant: "small"
            wrapMode: Text.Wrap
            color: root.message ? Theme.statusInk(root.tone) : Theme.mute
            Layout.fillWidth: true
            Accessible.role: root.wrong ? Accessible.AlertMessage : Accessible.StaticText
        }
    }
}
