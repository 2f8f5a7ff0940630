import QtQuick
import QtQuick.Layouts
import Thalvorn

// What an empty page says: what belongs there, and the first step.
Item {
    id: root

    property string icon: "tray"
    property string title
    property string text
    property string actionText
    property string actionIcon: "plus"
    property string secondText
    signal action()
    signal second()

    implicitHeight: column.implicitHeight + Theme.space8 * 2
    implicitWidth: 420

    ColumnLayout {
        id: column
        anchors.centerIn: parent
        width: Math.min(parent.width - Theme.space6 * 2, 420)
        spacing: Theme.space2

        Rectangle {
            implicitWidth: 56
            implicitHeight: 56
            radius: 28
            color: Theme.accentBg
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: Theme.space2
            Icon { anchors.centerIn: parent; name: root.icon; size: 26; color: Theme.accent }
        }
        AppText {
            text: root.title
            variant: "subtitle"
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            Layout.fillWidth: true
        }
        AppText {
            visible: root.text.length > 0
            text: root.text
            color: Theme.mute
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            Layout.fillWidth: true
        }
        Row {
            visible: root.actionText.length > 0 || root.secondText.length > 0
            spacing: Theme.space2
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: Theme.space3
            PrimaryButton { visible: root.actionText.length > 0; text: root.actionText; iconName: root.actionIcon; onClicked: root.action() }
            SecondaryButton { visible: root.secondText.length > 0; text: root.secondText; onClicked: root.second() }
        }
    }
}
