import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A search line; `edited` follows the typing after a short pause. Escape empties it, Down leaves to the list below.
FocusScope {
    id: root

    property alias text: input.text
    property string placeholder: "Search"
    property string keyHint: "Ctrl F"
    property bool quiet: false
    property bool button: false
    property int pause: 120
    signal edited(string text)
    signal downPressed()
    signal clicked()

    implicitWidth: 300
    implicitHeight: Theme.controlHeight

    function forceFocus() {
        input.forceActiveFocus(Qt.ShortcutFocusReason);
        input.selectAll();
    }
    function clear() {
        if (!input.text)
            return;
        input.text = "";
        timer.stop();
        edited("");
    }

    Timer {
        id: timer
        interval: root.pause
        onTriggered: root.edited(input.text)
    }

    T.TextField {
        id: input
        anchors.fill: parent
        focus: true
        readonly property bool mirrored: LayoutMirroring.enabled
        readonly property int endPadding: 12 + (clearButton.visible ? 24 : key.visible ? key.width + 4 : 0)
        leftPadding: mirrored ? endPadding : 36
        rightPadding: mirrored ? 36 : endPadding
        verticalAlignment: TextInput.AlignVCenter
        font: Theme.fonts.body
        color: Theme.ink
        selectionColor: Theme.accentFill
        selectedTextColor: Theme.accentInk
        selectByMouse: true
        hoverEnabled: true
        readOnly: root.button
        activeFocusOnTab: true
        Accessible.role: Accessible.EditableText
        Accessible.name: root.placeholder
        Accessible.searchEdit: true
        onTextEdited: timer.restart()
        onAccepted: { timer.stop(); root.edited(text); }
        onPressed: if (root.button) root.clicked()
        Keys.onReturnPressed: (event) => { if (root.button) root.clicked(); else event.accepted = false; }
        Keys.onSpacePressed: (event) => { if (root.button) root.clicked(); else event.accepted = false; }
        Keys.onEscapePressed: (event) => { if (text) root.clear(); else event.accepted = false; }
        Keys.onDownPressed: root.downPressed()
        background: FieldBox {
            focused: input.activeFocus
            quiet: root.quiet
            hovered: input.hovered
        }
        Icon {
            anchors.left: parent.left
            anchors.leftMargin: 11
            anchors.verticalCenter: parent.verticalCenter
            name: "magnifying-glass"
            color: Theme.mute
        }
        Text {
            visible: !input.text && !input.preeditText
            x: input.leftPadding
            width: input.width - x - input.rightPadding
            anchors.verticalCenter: parent.verticalCenter
            text: root.placeholder
            font: input.font
            color: Theme.mute
            elide: Text.ElideRight
        }
        Rectangle {
            id: key
            visible: root.keyHint.length > 0 && !input.text
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            width: keyText.implicitWidth + 14
            height: 22
            radius: 5
            color: "transparent"
            border.width: Theme.hairline
            border.color: Theme.controlLine
            Text {
                id: keyText
                anchors.centerIn: parent
                text: root.keyHint
                font: Theme.fonts.tiny
                color: Theme.mute
            }
        }
        IconButton {
            id: clearButton
            visible: input.text.length > 0
            anchors.right: parent.right
            anchors.rightMargin: 4
            anchors.verticalCenter: parent.verticalCenter
            implicitWidth: 28
            implicitHeight: 28
            focusPolicy: Qt.NoFocus
            iconName: "x"
            tip: "Clear the search"
            onClicked: { root.clear(); input.forceActiveFocus(); }
        }
    }
}
