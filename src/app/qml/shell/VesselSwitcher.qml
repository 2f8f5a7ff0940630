import QtQuick
import QtQuick.Templates as T
import Thalvorn

// The vessel in view, and the choice of another.
T.Button {
    id: root

    property bool narrow: false
    readonly property var vessel: Fleet.selectedVessel

    implicitHeight: narrow ? 44 : 56
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.ComboBox
    Accessible.name: "Vessel: " + (vessel.name ?? "none")
    onClicked: menu.popup(root, 0, root.height + Theme.space1)
    Keys.onReturnPressed: clicked()
    Keys.onDownPressed: clicked()

    background: Rectangle {
        radius: 10
        color: root.hovered || root.down ? Theme.sideHover : Theme.sideRaised
    }
    contentItem: Item {
        Icon {
            anchors.left: parent.left
            anchors.leftMargin: root.narrow ? (parent.width - width) / 2 : 12
            anchors.verticalCenter: parent.verticalCenter
            name: "boat"
            size: 22
            color: Theme.sideStrong
        }
        Column {
            visible: !root.narrow
            anchors.left: parent.left
            anchors.leftMargin: 45
            width: parent.width - 45 - 36
            anchors.verticalCenter: parent.verticalCenter
            spacing: 1
            AppText { width: parent.width; text: root.vessel.name ?? "No vessel"; variant: "strong"; color: Theme.sideStrong }
            AppText { width: parent.width; text: root.vessel.detail ?? "Add one to begin"; variant: "small"; color: Theme.sideMute }
        }
        Icon {
            visible: !root.narrow
            anchors.right: parent.right
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            name: "caret-up-down"
            color: Theme.sideInk
        }
    }
    FocusRing { offset: 2; radius: 12; border.color: Theme.sideAccent }
    HoverTip { text: root.narrow ? root.vessel.name ?? "" : ""; shown: root.hovered }

    OptionMenu {
        id: menu
        minimumWidth: 240
        value: Fleet.selectedVesselId
        options: {
            const list = Fleet.vessels.map((vessel) => ({ value: vessel.id, text: vessel.name, icon: "boat" }));
            if (list.length > 0)
                list.push({ value: "", text: "", separator: true });
            list.push({ value: "+manage", text: "Manage Vessels…", icon: "gear" });
            return list;
        }
        onPicked: (value) => {
            if (value === "+manage")
                App.post("openManageVessels");
            else
                Fleet.selectVessel(value);
        }
    }
}
