import QtQuick
import Thalvorn

// Progress over a page that keeps its old content. Shows only when the work takes longer than a moment.
Item {
    id: root

    property bool running: false
    property string text: "Working…"
    property bool shown: false

    anchors.fill: parent
    visible: shown
    onRunningChanged: if (!running) shown = false
    Accessible.role: Accessible.ProgressBar
    Accessible.name: text

    Timer {
        running: root.running
        interval: Theme.busyDelay
        onTriggered: root.shown = true
    }
    Rectangle {
        anchors.centerIn: parent
        width: row.implicitWidth + Theme.space8
        height: 48
        radius: Theme.radiusCard
        color: Theme.raised
        border.width: Theme.hairline
        border.color: Theme.controlLine
        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.space3
            BusySpinner { size: 20; anchors.verticalCenter: parent.verticalCenter }
            AppText { text: root.text; anchors.verticalCenter: parent.verticalCenter }
        }
    }
}
