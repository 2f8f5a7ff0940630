import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// One counter of the home page: how many tasks stand in a status. It opens them.
T.AbstractButton {
    id: root

    property var counter: ({})

    implicitHeight: column.implicitHeight + Theme.space4 * 2
    implicitWidth: 200
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: counter.title + ": " + counter.count + ", " + counter.note
                     + (counter.todayLabel ? ", " + counter.todayLabel + " " + counter.today : "")
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        radius: Theme.radiusCard
        color: root.down ? Theme.pressed : root.hovered ? Theme.hover : Theme.card
        border.width: Theme.hairline
        border.color: Theme.line
    }

    ColumnLayout {
        id: column
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: 18
        anchors.rightMargin: 18
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.topMargin: Theme.space4
        anchors.bottomMargin: Theme.space4
        spacing: 2
        Row {
            spacing: Theme.space2
            Layout.preferredHeight: 20
            Rectangle {
                width: 9
                height: 9
                radius: 4.5
                color: Theme.statusInk(root.counter.tone)
                anchors.verticalCenter: parent.verticalCenter
            }
            AppText { text: root.counter.title ?? ""; variant: "medium"; height: 20; verticalAlignment: Text.AlignVCenter }
        }
        RowLayout {
            spacing: Theme.space3
            Layout.fillWidth: true
            AppText { text: Format.number(root.counter.count ?? 0, 0); variant: "headline"; tip: false }
            Column {
                visible: (root.counter.todayLabel ?? "") !== ""
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignBottom
                Layout.bottomMargin: 6
                AppText { width: parent.width; text: Format.number(root.counter.today ?? 0, 0); variant: "strong"; horizontalAlignment: Text.AlignRight }
                AppText { width: parent.width; text: root.counter.todayLabel ?? ""; variant: "small"; horizontalAlignment: Text.AlignRight }
            }
            Item { visible: (root.counter.todayLabel ?? "") === ""; Layout.fillWidth: true }
        }
        Item { Layout.fillHeight: true }
        AppText { text: root.counter.note ?? ""; variant: "small"; Layout.fillWidth: true }
    }
    FocusRing { radius: Theme.radiusCard + 2 }
}
