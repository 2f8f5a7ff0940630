import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A small field in a toolbar that narrows a list by words in one column.
T.TextField {
    id: root

    property string label
    property string words
    property int pause: 150
    signal edited(string words)

    implicitHeight: Theme.chipHeight
    implicitWidth: 150
    leftPadding: 30
    rightPadding: 10
    verticalAlignment: TextInput.AlignVCenter
    font: Theme.fonts.small
    color: Theme.ink
    selectionColor: Theme.accentFill
    selectedTextColor: Theme.accentInk
    selectByMouse: true
    hoverEnabled: true
    Accessible.role: Accessible.EditableText
    Accessible.name: label
    onWordsChanged: if (words !== text.trim()) text = words
    onTextEdited: timer.restart()
    onAccepted: { timer.stop(); edited(text.trim()); }
    Keys.onEscapePressed: (event) => {
        if (text) {
            text = "";
            timer.stop();
            edited("");
        } else
            event.accepted = false;
    }
    background: FieldBox {
        focused: root.activeFocus
        hovered: root.hovered
    }

    Timer {
        id: timer
        interval: root.pause
        onTriggered: root.edited(root.text.trim())
    }
    Icon {
        x: 9
        anchors.verticalCenter: parent.verticalCenter
        name: "user"
        size: Theme.iconSmall
        color: Theme.mute
    }
    Text {
        visible: !root.text && !root.preeditText
        x: root.leftPadding
        anchors.verticalCenter: parent.verticalCenter
        text: root.label
        font: Theme.fonts.smallMedium
        color: Theme.ink
    }
}
