import QtQuick
import QtQuick.Layouts
import Thalvorn

// What the records shown come to, and how the months compare. figures: [{label, value, note}]; charts: [{title, bars}].
// Plain rows instead of layouts: figures and charts come and go with the records, also while the strip is hidden.
Card {
    id: root

    property var figures: []
    property var charts: []
    readonly property real chartsRoom: width - padding * 2 - figureRow.width - Theme.space6
    readonly property int chartsFit: Math.max(0, Math.min(charts.length, Math.floor(chartsRoom / 270)))

    padding: Theme.space3
    Accessible.name: figures.map((figure) => figure.label + " " + figure.value).join(", ")

    Item {
        implicitHeight: Math.max(figureRow.height, chartRow.height)
        Layout.fillWidth: true

        Row {
            id: figureRow
            x: Theme.space1
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.space6
            Repeater {
                model: root.figures
                delegate: Column {
                    id: figure
                    required property var modelData
                    spacing: 1
                    width: Math.max(96, label.implicitWidth, value.implicitWidth, note.implicitWidth)
                    AppText { id: label; text: figure.modelData.label; variant: "small" }
                    AppText { id: value; text: figure.modelData.value; variant: "subtitle" }
                    AppText { id: note; visible: text.length > 0; text: figure.modelData.note; variant: "small" }
                }
            }
        }
        Row {
            id: chartRow
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.space6
            Repeater {
                model: root.charts
                delegate: Column {
                    id: chart
                    required property var modelData
                    required property int index
                    visible: index < root.chartsFit
                    width: Math.min(420, (root.chartsRoom - chartRow.spacing * Math.max(0, root.chartsFit - 1)) / Math.max(1, root.chartsFit))
                    spacing: Theme.space1
                    AppText { text: chart.modelData.title; variant: "small" }
                    BarChart { width: parent.width; height: 64; bars: chart.modelData.bars; spacing: 4 }
                }
            }
        }
    }
}
