import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A surface over the dimmed window. Everything modal stands on it.
T.Popup {
    id: root

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    padding: 0
    margins: Theme.space4
    closePolicy: T.Popup.NoAutoClose

    T.Overlay.modal: Rectangle {
        color: Theme.scrim
        Behavior on opacity { NumberAnimation { duration: Theme.calm } }
    }

    background: Item {
        SheetShadow { anchors.fill: parent }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusSheet
            color: Theme.card
            border.width: Theme.hairline
            border.color: Theme.line
        }
    }

    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.calm; easing.type: Easing.OutCubic } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.fast } }
}
