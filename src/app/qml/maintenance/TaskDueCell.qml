import QtQuick
import Thalvorn

// When a task falls due, the deciding trigger first; a snoozed one offers to change that.
TableCell {
    id: root

    signal snoozeClicked(string id)

    readonly property bool snoozed: row ? row.snoozed === true : false

    Column {
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        spacing: 2
        AppText { width: parent.width; text: root.row ? root.row.due ?? "" : "" }
        AppText {
            visible: !root.snoozed && text.length > 0
            width: parent.width
            text: root.row ? root.row.dueMore ?? "" : ""
            variant: "small"
        }
        Loader {
            active: root.snoozed
            visible: active
            sourceComponent: LinkButton {
                text: root.row.dueMore
                ink: Theme.mute
                implicitHeight: 17
                variant: "small"
                focusPolicy: Qt.NoFocus
                onClicked: root.snoozeClicked(root.row.id)
            }
        }
    }
}
