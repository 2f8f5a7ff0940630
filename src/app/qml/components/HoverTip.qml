import QtQuick
import QtQuick.Templates as T
import Thalvorn

// Shows a small text when its parent is hovered for a moment. Costs nothing until the pointer comes.
Item {
    id: root

    property string text
    property bool shown: hover.hovered

    anchors.fill: parent
    visible: text.length > 0

    HoverHandler { id: hover }

    Loader {
        active: root.shown && root.visible
        sourceComponent: T.ToolTip {
            id: tip
            parent: root
            visible: true
            delay: Theme.tipDelay
            text: root.text
            x: Math.round((root.width - width) / 2)
            y: root.height + Theme.space1
            margins: Theme.space2
            padding: Theme.space2
            leftPadding: 10
            rightPadding: 10
            implicitWidth: Math.min(360, label.implicitWidth + leftPadding + rightPadding)
            implicitHeight: contentHeight + topPadding + bottomPadding
            closePolicy: T.Popup.CloseOnEscape
            contentItem: Text {
                id: label
                text: tip.text
                font: Theme.fonts.small
                color: Theme.tipInk
                wrapMode: Text.Wrap
                textFormat: Text.PlainText
            }
            background: Rectangle {
                radius: Theme.radiusSmall
                color: Theme.tipBg
                border.width: Theme.hairline
                border.color: Theme.tipBg
            }
        }
    }
}
