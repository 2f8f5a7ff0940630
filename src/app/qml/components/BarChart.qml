import QtQuick
import Thalvorn

// A small bar chart. bars: [{label, value, text?}]; the last one is the present and stands out.
Item {
    id: root

    property var bars: []
    property string unit
    property int lastIsNow: 1
    property int spacing: Theme.space3
    readonly property real tallest: {
        let most = 1;
        for (const bar of bars)
            most = Math.max(most, bar.value);
        return most;
    }

    implicitHeight: 96
    implicitWidth: 400
    Accessible.role: Accessible.Chart
    Accessible.name: {
        const parts = [];
        for (const bar of bars)
            parts.push(bar.label + " " + (bar.text ?? bar.value));
        return parts.join(", ");
    }

    Row {
        id: row
        anchors.fill: parent
        spacing: root.spacing
        Repeater {
            model: root.bars
            delegate: Item {
                id: cell
                required property var modelData
                required property int index
                width: (row.width - row.spacing * (root.bars.length - 1)) / Math.max(1, root.bars.length)
                height: row.height

                Rectangle {
                    anchors.bottom: label.top
                    anchors.bottomMargin: Theme.space1
                    width: parent.width
                    height: cell.modelData.value > 0 ? Math.max(3, (parent.height - label.height - Theme.space1) * cell.modelData.value / root.tallest) : 2
                    radius: Math.min(4, height / 2)
                    color: cell.modelData.value <= 0 ? Theme.track
                         : root.lastIsNow && cell.index === root.bars.length - 1 ? Theme.accentFill
                         : hover.hovered ? Theme.accent : Theme.barFaint
                }
                HoverHandler { id: hover }
                HoverTip {
                    text: cell.modelData.text ?? (cell.modelData.value + (root.unit ? " " + root.unit : ""))
                    shown: hover.hovered
                }
                Text {
                    id: label
                    anchors.bottom: parent.bottom
                    width: parent.width
                    text: cell.modelData.label
                    font: Theme.fonts.small
                    color: Theme.mute
                    horizontalAlignment: Text.AlignHCenter
                    elide: Text.ElideRight
                }
            }
        }
    }
}
