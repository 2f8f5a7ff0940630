import QtQuick
import QtQuick.Layouts
import Thalvorn

// What the services shown cost together, and by year.
Card {
    id: root

    property var costs: ({})
    property var years: []

    padding: Theme.space3
    Accessible.name: "Costs: total " + (costs.total ?? "") + " " + (costs.currency ?? "")

    RowLayout {
        spacing: Theme.space6
        Layout.fillWidth: true
        Layout.leftMargin: Theme.space1

        component Sum: ColumnLayout {
            property string label
            property string value
            property bool strong: false
            spacing: 1
            AppText { text: parent.label; variant: "small" }
            AppText { text: parent.value; variant: parent.strong ? "subtitle" : "medium"; Layout.preferredHeight: 24; verticalAlignment: Text.AlignVCenter }
        }
        Sum { label: "Total (" + (root.costs.currency ?? "") + ")"; value: root.costs.total ?? ""; strong: true }
        Sum { label: "Labor"; value: root.costs.labour ?? "" }
        Sum { label: "Parts"; value: root.costs.parts ?? "" }
        Rectangle { visible: root.years.length > 0; implicitWidth: 1; Layout.fillHeight: true; color: Theme.line }
        Repeater {
            model: root.width > 760 ? root.years.slice(0, Math.max(1, Math.floor((root.width - 420) / 124))) : []
            delegate: ColumnLayout {
                id: year
                required property var modelData
                spacing: 3
                Layout.preferredWidth: 100
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.year + ": " + modelData.total + ", " + modelData.services + " services"
                RowLayout {
                    AppText { text: year.modelData.year; variant: "small"; Layout.fillWidth: true; Accessible.ignored: true }
                    AppText { text: year.modelData.services + " jobs"; variant: "small"; Accessible.ignored: true }
                }
                AppText { text: year.modelData.total; variant: "medium"; Layout.fillWidth: true; Accessible.ignored: true }
                ProgressLine { value: year.modelData.share; tone: "accent"; Layout.fillWidth: true; Layout.preferredHeight: 4 }
            }
        }
        Item { Layout.fillWidth: true }
    }
}
