import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// The fleet: the order of the vessels, and the particulars of each.
Page {
    id: root

    property string chosenId

    title: "Manage Vessels"
    note: VesselList.count > 1 ? "Drag to arrange, or Alt+Up and Alt+Down" : ""
    actions: [PrimaryButton { text: "Add vessel"; writes: true; iconName: "plus"; tip: "Ctrl+N"; onClicked: root.edit("") }]
    commands: ["newRecord"]
    onPosted: (name) => { if (name === "newRecord" || name === "addVesselRequested") root.edit(""); }
    onOpened: (args) => {
        if (args.highlight)
            chosenId = args.highlight;
        else
            chooseFirst();
        list.forceActiveFocus();
    }
    help: Component {
        AppText {
            text: "The particulars entered here head every printed page. The order is that of the vessel switcher. Deleting a vessel deletes everything that belongs to her; the page says what before it does."
            wrapMode: Text.Wrap
        }
    }

    // Where the detail has a place of its own it shows the vessel in view from the start.
    function chooseFirst() {
        if (!chosenId && split.beside)
            chosenId = Fleet.selectedVesselId;
    }
    // A vessel just added or chosen in the sidebar is shown here too.
    Connections {
        target: Fleet
        property string last
        Component.onCompleted: last = Fleet.selectedVesselId
        function onVesselsChanged() {
            if (Fleet.selectedVesselId === last)
                return;
            last = Fleet.selectedVesselId;
            if (!split.beside || !last)
                return;
            root.chosenId = last;
            list.currentIndex = VesselList.rowOf(last);
        }
    }
    function edit(id) {
        App.openSheet("fleet/VesselSheet.qml", { vesselId: id });
    }
    function askDelete(id) {
        if (!id)
            return;
        deletion.vesselId = id;
        const row = VesselList.describe(id);
        const lines = VesselList.whatHangsOn(id);
        deletion.needsName = lines.length > 0;
        deletion.typed = "";
        deletion.ask("Delete " + row.name + "?",
                     lines.length > 0 ? "With her go " + lines.join(", ") + ". Type her name to confirm. You can undo this for a while." : "Nothing belongs to her yet.", "Delete");
    }

    ListDetail {
        id: split
        anchors.fill: parent
        focus: true
        detailWidth: 420
        onBesideChanged: root.chooseFirst()
        open: root.chosenId !== ""
        detailTitle: pane.about.name ?? "Vessel"
        onClosed: { root.chosenId = ""; list.forceActiveFocus(); }
        list: Card {
            anchors.fill: parent
            padding: 0
            stretch: true
            ListView {
                id: list
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.margins: 1
                topMargin: 6
                bottomMargin: 6
                model: VesselList
                clip: true
                focus: true
                activeFocusOnTab: true
                boundsBehavior: Flickable.StopAtBounds
                highlightMoveDuration: 0
                currentIndex: -1
                moveDisplaced: Transition { NumberAnimation { property: "y"; duration: Theme.fast } }
                T.ScrollBar.vertical: AppScrollBar {}
                Accessible.role: Accessible.List
                Accessible.name: "Vessels"
                onActiveFocusChanged: if (activeFocus && currentIndex < 0) currentIndex = Math.max(0, VesselList.rowOf(root.chosenId))
                onCurrentItemChanged: if (currentItem && activeFocus) root.chosenId = currentItem.model.id
                Keys.onPressed: (event) => {
                    const id = currentItem ? currentItem.model.id : "";
                    let taken = id !== "";
                    if (taken && event.modifiers & Qt.AltModifier && (event.key === Qt.Key_Up || event.key === Qt.Key_Down)) {
                        VesselList.shift(id, event.key === Qt.Key_Up ? -1 : 1);
                        currentIndex = VesselList.rowOf(id);
                    } else if (taken && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter))
                        root.edit(id);
                    else if (taken && event.key === Qt.Key_Home)
                        currentIndex = 0;
                    else if (taken && event.key === Qt.Key_End)
                        currentIndex = count - 1;
                    else if (taken && event.key === Qt.Key_Delete)
                        root.askDelete(id);
                    else
                        taken = false;
                    event.accepted = taken;
                }
                delegate: Item {
                    id: line
                    required property var model
                    required property int index
                    readonly property bool chosen: model.id === root.chosenId
                    width: ListView.view ? ListView.view.width : 0
                    height: 84
                    z: drag.active ? 2 : 0
                    Accessible.role: Accessible.ListItem
                    Accessible.name: model.name + ", " + model.detail
                    Accessible.selected: chosen

                    Rectangle {
                        id: surface
                        x: 6
                        width: parent.width - 12
                        height: parent.height
                        color: line.chosen ? Theme.accentBg : hover.hovered || drag.active ? Theme.hover : Theme.card
                        radius: Theme.radiusControl
                        border.width: line.ListView.isCurrentItem && list.activeFocus ? 2 : 0
                        border.color: Theme.accent
                        RowLayout {
                            anchors.fill: parent
                            anchors.leftMargin: Theme.space3
                            anchors.rightMargin: Theme.space4
                            spacing: Theme.space3
                            Item {
                                implicitWidth: 22
                                Layout.fillHeight: true
                                Icon { anchors.centerIn: parent; name: "arrows-vertical"; color: Theme.faint }
                                HoverHandler { cursorShape: Qt.OpenHandCursor }
                                DragHandler {
                                    id: drag
                                    target: null
                                    xAxis.enabled: false
                                    onActiveChanged: if (!active) VesselList.keepOrder()
                                    onCentroidChanged: {
                                        if (!active)
                                            return;
                                        const at = list.mapFromItem(null, centroid.scenePosition.x, centroid.scenePosition.y);
                                        const to = list.indexAt(10, at.y + list.contentY);
                                        if (to >= 0 && to !== line.index)
                                            VesselList.moveTo(line.index, to);
                                    }
                                }
                            }
                            VesselPhoto { source: line.model.photo ?? ""; implicitWidth: 84; implicitHeight: 58 }
                            ColumnLayout {
                                spacing: 2
                                Layout.fillWidth: true
                                AppText { text: line.model.name || "(no name)"; variant: "strong"; Layout.fillWidth: true }
                                AppText { text: line.model.detail; variant: "small"; Layout.fillWidth: true }
                                AppText { visible: text.length > 0; text: line.model.registry; variant: "small"; Layout.fillWidth: true }
                            }
                            ColumnLayout {
                                spacing: 2
                                Layout.preferredWidth: 130
                                AppText { text: line.model.tasks === 1 ? "1 open task" : Format.number(line.model.tasks, 0) + " open tasks"; Layout.alignment: Qt.AlignRight }
                                AppText { text: line.model.services === 1 ? "1 service" : Format.number(line.model.services, 0) + " services"; variant: "small"; Layout.alignment: Qt.AlignRight }
                            }
                        }
                    }
                    HoverHandler { id: hover }
                    TapHandler {
                        acceptedButtons: Qt.LeftButton | Qt.RightButton
                        onTapped: (point, button) => {
                            list.forceActiveFocus();
                            list.currentIndex = line.index;
                            root.chosenId = line.model.id;
                            if (button === Qt.RightButton)
                                menu.popup(line, point.position.x, point.position.y);
                        }
                        onDoubleTapped: root.edit(line.model.id)
                    }
                }
            }
            EmptyState {
                visible: VesselList.count === 0
                icon: "boat"
                title: "No vessels yet"
                text: "Add your yacht: her tasks, history and papers belong to her."
                actionText: "Add vessel"
                onAction: root.edit("")
                Layout.fillWidth: true
                Layout.fillHeight: true
            }
        }
        detail: VesselPane {
            id: pane
            vesselId: root.chosenId
            onEditRequested: root.edit(root.chosenId)
            onDeleteRequested: root.askDelete(root.chosenId)
            Layout.fillWidth: true
        }
    }

    OptionMenu {
        id: menu
        options: [
            { value: "edit", text: "Edit…", icon: "pencil-simple", enabled: !App.readOnly },
            { value: "up", text: "Move up", icon: "caret-up", enabled: !App.readOnly },
            { value: "down", text: "Move down", icon: "caret-down", enabled: !App.readOnly },
            { value: "delete", text: "Delete…", icon: "trash", danger: true, enabled: !App.readOnly }
        ]
        onPicked: (value) => {
            if (value === "edit")
                root.edit(root.chosenId);
            else if (value === "delete")
                root.askDelete(root.chosenId);
            else
                VesselList.shift(root.chosenId, value === "up" ? -1 : 1);
        }
    }

    ConfirmDialog {
        id: deletion
        property string vesselId
        property string typed
        property bool needsName: false
        canConfirm: !needsName || VesselList.isNameOf(vesselId, typed)
        onOpened: if (needsName) nameField.forceFocus()
        onConfirmed: {
            root.chosenId = "";
            VesselList.remove(vesselId);
        }
        TextInputField {
            id: nameField
            visible: deletion.needsName
            label: "Vessel name"
            placeholder: VesselList.describe(deletion.vesselId).name ?? ""
            text: deletion.typed
            onEdited: (text) => deletion.typed = text
            Layout.fillWidth: true
        }
    }
}
