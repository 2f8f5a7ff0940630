import QtQuick
import Thalvorn

// One text in the middle of its row; it may wrap to a second line.
TableCell {
    id: root

    property string text
    property string variant: "body"
    property color ink: Theme.ink
    property bool wrap: false

    AppText {
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        text: root.text
        variant: root.variant
        color: root.ink
        wrapMode: root.wrap ? Text.Wrap : Text.NoWrap
        maximumLineCount: root.wrap ? 2 : 1
        horizontalAlignment: root.alignRight ? Text.AlignRight : Text.AlignLeft
    }
}
