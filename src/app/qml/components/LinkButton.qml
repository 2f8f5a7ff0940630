import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A quiet action inside text or beside a heading.
T.Button {
    id: root

    property string iconName
    property string tip
    property color ink: Theme.accent
    property string variant: "smallMedium"
    property bool writes: false  // changes records: off where the user may only read

    implicitHeight: Math.max(24, contentItem.implicitHeight)
    implicitWidth: Math.ceil(contentItem.implicitWidth)
    padding: 0
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.Link
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Row {
        spacing: 6
        Icon {
            visible: root.iconName.length > 0
            name: root.iconName
            size: Theme.iconSmall
            color: root.ink
            anchors.verticalCenter: parent.verticalCenter
        }
        Text {
            text: root.text
            font.family: Theme.family
            font.pointSize: Theme.fonts[root.variant].pointSize
            font.weight: Theme.fonts[root.variant].weight
            font.underline: root.hovered
            color: root.ink
            textFormat: Text.PlainText
            anchors.verticalCenter: parent.verticalCenter
        }
    }

    Binding { target: root; property: "enabled"; value: false; when: root.writes && App.readOnly }
    HoverHandler { cursorShape: Qt.PointingHandCursor }
    FocusRing { offset: 2; radius: Theme.radiusSmall }
    HoverTip { text: root.tip; shown: root.hovered }
}
