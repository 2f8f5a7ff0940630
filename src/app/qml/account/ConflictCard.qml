import QtQuick
import QtQuick.Layouts
import Thalvorn

// What two people changed in one record at once: both versions side by side, and the choice between them.
Card {
    id: root

    property var conflict: ({})
    readonly property string otherWithin: conflict.other === "You" ? "you" : conflict.other  // inside a sentence

    title: conflict.name || "Unnamed"
    note: "· " + conflict.kind

    AppText {
        text: root.conflict.deleted
              ? root.conflict.kept + " deleted this record (" + Format.dateTime(root.conflict.keptAt) + ") while " + root.otherWithin + " changed it (" + Format.dateTime(root.conflict.otherAt) + "). It stays deleted; the changed version is kept here."
              : (root.conflict.kept === "You" && root.conflict.other === "You" ? "You changed this on two computers" : root.conflict.kept + " and " + root.otherWithin + " changed this")
                + " at the same time. The later change stands; the other is kept here."
        color: Theme.mute
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    GridLayout {
        visible: root.conflict.lines.length > 0
        columns: 3
        columnSpacing: Theme.space3
        rowSpacing: Theme.space2
        Layout.fillWidth: true
        AppText { text: "Field"; variant: "caps"; Layout.preferredWidth: 60; Layout.fillWidth: true }
        AppText { text: "As it is now"; variant: "caps"; Layout.preferredWidth: 100; Layout.fillWidth: true }
        AppText { text: root.conflict.other + ", " + Format.dateTime(root.conflict.otherAt); variant: "caps"; Layout.preferredWidth: 100; Layout.fillWidth: true }
        Repeater {
            model: root.conflict.lines.length * 3
            delegate: AppText {
                required property int index
                readonly property var line: root.conflict.lines[Math.floor(index / 3)]
                text: index % 3 === 0 ? line.field : (index % 3 === 1 ? line.now : line.other) || "—"
                variant: index % 3 === 0 ? "medium" : "body"
                wrapMode: Text.Wrap
                maximumLineCount: 8
                Layout.preferredWidth: index % 3 === 0 ? 60 : 100
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignTop
            }
        }
    }
    Flow {
        spacing: Theme.space2
        Layout.fillWidth: true
        SecondaryButton { text: "Keep as it is"; iconName: "check"; onClicked: Sync.keep(root.conflict.id) }
        SecondaryButton { text: "Take back"; iconName: "arrow-u-up-left"; tip: root.conflict.deleted ? "Puts the record back as " + root.otherWithin + " had it" : "Puts the other values back in"; onClicked: Sync.takeBack(root.conflict.id) }
    }
}
