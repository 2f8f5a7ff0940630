import QtQuick
import Thalvorn

// Text in one of the program's type styles. A line that is cut shows the whole text when hovered.
Text {
    id: root

    property string variant: "body"
    property bool tip: true

    font: Theme.fonts[variant]
    color: variant === "small" || variant === "struck" || variant === "tiny" || variant === "caps" ? Theme.mute : Theme.ink
    elide: Text.ElideRight
    textFormat: Text.PlainText
    lineHeightMode: wrapMode === Text.NoWrap ? Text.ProportionalHeight : Text.FixedHeight
    lineHeight: wrapMode === Text.NoWrap ? 1 : Theme.lineHeights[variant]
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Loader {
        active: root.tip && root.truncated
        anchors.fill: parent
        sourceComponent: HoverTip { text: root.text }
    }
}
