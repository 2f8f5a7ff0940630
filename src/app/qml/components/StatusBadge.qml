import QtQuick
import Thalvorn

// A status as a word on its colour. `tone`: "overdue", "soon", "ok", "accent"; anything else is neutral.
Rectangle {
    id: root

    property string text
    property string tone

    implicitWidth: label.implicitWidth + 18
    implicitHeight: 20
    radius: height / 2
    color: Theme.statusBg(tone)
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Text {
        id: label
        anchors.verticalCenter: parent.verticalCenter
        x: 9
        width: Math.min(implicitWidth, parent.width - 18)
        text: root.text
        font: Theme.fonts.badge
        color: Theme.statusInk(root.tone)
        elide: Text.ElideRight
        textFormat: Text.PlainText
    }
}
