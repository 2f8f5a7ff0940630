import QtQuick
import Thalvorn

// A count that needs attention, as the sidebar shows it. Hidden at zero.
Rectangle {
    id: root

    property int count: 0
    property string tone: "overdue"
    property string meaning

    implicitWidth: Math.max(22, label.implicitWidth + 12)
    implicitHeight: 20
    radius: 10
    visible: count > 0
    color: tone === "overdue" ? Theme.sideAlert : tone === "soon" ? Theme.sideSoon : Theme.sideRaised
    Accessible.role: Accessible.StaticText
    Accessible.name: count + " " + meaning

    Text {
        id: label
        anchors.centerIn: parent
        text: root.count > 999 ? "999+" : root.count
        font: Theme.fonts.badge
        color: root.tone === "overdue" ? Theme.sideAlertInk : root.tone === "soon" ? Theme.sideSoonInk : Theme.sideInk
    }
}
