import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A row of a card on the home page that opens something.
T.AbstractButton {
    id: root

    property bool last: false
    default property alias body: slot.data

    implicitHeight: 48
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle { color: root.down ? Theme.pressed : root.hovered ? Theme.hover : Theme.card }
    Item {
        id: slot
        anchors.fill: parent
        anchors.leftMargin: Theme.space4
        anchors.rightMargin: Theme.space4
    }
    Divider { visible: !root.last; anchors.bottom: parent.bottom; width: parent.width }
    FocusRing { offset: -2; radius: Theme.radiusSmall }
}
