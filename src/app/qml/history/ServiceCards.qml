import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// The service history with everything in it, one card after the other. Arrows choose, Enter corrects, Delete deletes.
FocusScope {
    id: root

    property var services: null
    signal selected(string id)
    signal correctRequested(string id)
    signal deleteRequested(string id)

    function showId(id) {
        const at = services.rowOf(id);
        if (at < 0)
            return;
        view.currentIndex = at;
        view.positionViewAtIndex(at, ListView.Beginning);
    }

    ListView {
        id: view
        anchors.fill: parent
        anchors.rightMargin: -14  // the scroll bar stands in the page's margin
        model: root.services
        spacing: Theme.space3
        clip: true
        focus: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        currentIndex: -1
        T.ScrollBar.vertical: AppScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: "Service history, detailed"
        Keys.onReturnPressed: if (currentItem) root.correctRequested(currentItem.service.id)
        Keys.onDeletePressed: if (currentItem) root.deleteRequested(currentItem.service.id)
        onCurrentItemChanged: if (currentItem) root.selected(currentItem.service.id)

        delegate: Card {
            id: card
            required property var model
            required property int index
            readonly property var service: ServiceHistory.revision >= 0 ? ServiceHistory.detail(model.id) : ({})
            width: ListView.view ? ListView.view.width - 14 : 0
            border.color: ListView.isCurrentItem ? Theme.accent : Theme.line
            Accessible.role: Accessible.ListItem
            Accessible.name: model.title + ", " + model.date
            TapHandler { onTapped: { view.currentIndex = card.index; view.forceActiveFocus(); } }

            RowLayout {
                spacing: Theme.space3
                Layout.fillWidth: true
                Icon { name: card.model.icon; color: Theme.mute }
                AppText { text: card.model.title; variant: "strong"; Layout.fillWidth: true }
                AppText { text: card.model.dateExact; variant: "smallMedium" }
                IconButton { iconName: "pencil-simple"; tip: "Correct…"; writes: true; implicitWidth: 30; implicitHeight: 30; onClicked: root.correctRequested(card.model.id) }
                IconButton { iconName: "trash"; tip: "Delete"; writes: true; implicitWidth: 30; implicitHeight: 30; onClicked: root.deleteRequested(card.model.id) }
            }
            RowLayout {
                spacing: Theme.space6
                Layout.fillWidth: true
                Layout.topMargin: -Theme.space2
                AppText { text: card.model.category + " · " + card.model.kind; variant: "small" }
                AppText { visible: text.length > 0; text: card.model.hours; variant: "small" }
                AppText { visible: text.length > 0; text: card.model.person; variant: "small" }
                Item { Layout.fillWidth: true }
                AppText {
                    visible: text.length > 0
                    text: card.model.labour && card.model.partsCost ? "Labor " + card.model.labour + " + parts " + card.model.partsCost : ""
                    variant: "small"
                }
                AppText { visible: text.length > 0; text: card.model.total; variant: "strong" }
            }
            ServiceBody { service: card.service; Layout.fillWidth: true }
        }
    }
    EmptyState {
        anchors.fill: parent
        visible: view.count === 0
        icon: "clock-counter-clockwise"
        title: root.services && root.services.filtered ? "No services match" : "No services yet"
        text: root.services && root.services.filtered ? "Change the search or the filters to see more." : "Completing a task writes its service here, with notes, parts and costs."
    }
}
