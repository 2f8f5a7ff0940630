import QtQuick
import QtQuick.Templates as T
import Thalvorn

// What all text buttons share; use PrimaryButton, SecondaryButton, DangerButton, IconButton or LinkButton.
T.Button {
    id: root

    property string iconName
    property string tip
    property bool busy: false
    property bool writes: false  // changes records: off where the user may only read
    property string trailingIcon
    property color fill: "transparent"
    property color fillHover: Theme.hover
    property color fillPressed: Theme.pressed
    property color outline: "transparent"
    property color ink: Theme.ink
    property string variant: "medium"

    implicitHeight: Theme.controlHeight
    implicitWidth: Math.ceil(contentItem.implicitWidth) + leftPadding + rightPadding
    leftPadding: iconName && text ? 13 : Theme.space4
    rightPadding: trailingIcon ? 11 : Theme.space4
    spacing: Theme.space2
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.Button
    Accessible.name: text || tip
    Accessible.description: tip
    Keys.onReturnPressed: if (enabled) clicked()
    Keys.onEnterPressed: if (enabled) clicked()

    // The button's size comes from the text's natural width, never from the width the text is given: that would be a loop.
    contentItem: Item {
        id: face
        readonly property real marks: (root.busy || root.iconName ? Theme.iconSize + (root.text ? root.spacing : 0) : 0)
                                      + (root.trailingIcon ? 14 + root.spacing : 0)
        implicitWidth: marks + (root.text ? Math.ceil(label.implicitWidth) : 0)
        implicitHeight: row.implicitHeight

        Row {
            id: row
            anchors.centerIn: parent
            spacing: root.spacing

            BusySpinner {
                visible: root.busy
                size: Theme.iconSize
                color: root.ink
                anchors.verticalCenter: parent.verticalCenter
            }
            Icon {
                visible: root.iconName.length > 0 && !root.busy
                name: root.iconName
                color: root.ink
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                id: label
                visible: text.length > 0
                text: root.text
                font: Theme.fonts[root.variant]
                color: root.ink
                elide: Text.ElideRight
                textFormat: Text.PlainText
                width: Math.max(0, Math.min(Math.ceil(implicitWidth), face.width - face.marks))
                anchors.verticalCenter: parent.verticalCenter
            }
            Icon {
                visible: root.trailingIcon.length > 0
                name: root.trailingIcon
                size: 14
                color: root.ink
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }

    background: Rectangle {
        radius: Theme.radiusControl
        color: root.down ? root.fillPressed : root.hovered && root.enabled ? root.fillHover : root.fill
        border.width: root.outline.a > 0 ? 1 : 0
        border.color: root.outline

        Behavior on color { ColorAnimation { duration: Theme.fast } }
    }

    Binding { target: root; property: "enabled"; value: false; when: root.writes && App.readOnly }
    FocusRing {}
    HoverTip { text: root.tip; shown: root.hovered }
}
