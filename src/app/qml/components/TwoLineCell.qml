import QtQuick
import Thalvorn

// A text with a quieter one below it.
TableCell {
    id: root

    property string text
    property string second
    property string variant: "medium"
    property color ink: Theme.ink
    property color secondInk: Theme.mute

    Column {
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        spacing: 2
        AppText {
            width: parent.width
            text: root.text
            variant: root.variant
            color: root.ink
            horizontalAlignment: root.alignRight ? Text.AlignRight : Text.AlignLeft
        }
        AppText {
            visible: root.second.length > 0
            width: parent.width
            text: root.second
            variant: "small"
            color: root.secondInk
            horizontalAlignment: root.alignRight ? Text.AlignRight : Text.AlignLeft
        }
    }
}
