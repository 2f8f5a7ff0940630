import QtQuick
import Thalvorn

// What the colours of the board mean.
Row {
    spacing: Theme.space4
    Accessible.role: Accessible.Grouping
    Accessible.name: "Legend"

    Repeater {
        model: Maintenance.legend
        delegate: Row {
            required property var modelData
            spacing: 6
            Rectangle {
                width: 8
                height: 8
                radius: 4
                color: Theme.statusInk(parent.modelData.tone)
                anchors.verticalCenter: parent.verticalCenter
            }
            AppText {
                text: parent.modelData.text + (parent.modelData.meaning ? " — " + parent.modelData.meaning : "")
                variant: "small"
                tip: false
            }
        }
    }
}
