import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A line of text. `edited` reports what the user typed; set `text` to what should stand there.
FieldFrame {
    id: root

    property alias text: input.text
    property string placeholder
    property string unit
    property string iconName
    property string trailingIcon
    property string trailingTip
    property alias readOnly: input.readOnly
    property alias inputMethodHints: input.inputMethodHints
    property alias echoMode: input.echoMode
    property alias maximumLength: input.maximumLength
    property alias input: input
    property bool alignRight: false
    signal edited(string text)
    signal accepted()
    signal finished()
    signal trailingClicked()

    // Puts another text in, as if typed: a binding of `text` stays.
    function replaceText(newText) {
        input.remove(0, input.length);
        input.insert(0, newText);
    }
    function forceFocus() {
        input.forceActiveFocus(Qt.TabFocusReason);
    }

    T.TextField {
        id: input

        width: parent.width
        implicitHeight: Theme.controlHeight
        implicitWidth: 120
        readonly property bool mirrored: LayoutMirroring.enabled
        readonly property int startPadding: root.iconName ? 34 : 11
        readonly property int endPadding: 11 + (root.unit ? unitText.width + 8 : 0) + (root.trailingIcon ? 26 : 0)
        leftPadding: mirrored ? endPadding : startPadding
        rightPadding: mirrored ? startPadding : endPadding
        verticalAlignment: TextInput.AlignVCenter
        horizontalAlignment: root.alignRight ? TextInput.AlignRight : TextInput.AlignLeft
        font: Theme.fonts.body
        color: enabled ? Theme.ink : Theme.mute
        selectionColor: Theme.accentFill
        selectedTextColor: Theme.accentInk
        placeholderTextColor: Theme.faint
        selectByMouse: true
        hoverEnabled: true
        activeFocusOnTab: true
        Accessible.role: Accessible.EditableText
        Accessible.name: root.label + (root.unit ? ", " + root.unit : "") + (root.required ? ", required" : "")
        Accessible.description: root.message || root.hint || root.placeholder
        onTextEdited: root.edited(text)
        onTextChanged: if (!activeFocus) cursorPosition = 0
        onAccepted: root.accepted()
        onEditingFinished: root.finished()
        onActiveFocusChanged: if (activeFocus && (focusReason === Qt.TabFocusReason || focusReason === Qt.BacktabFocusReason)) selectAll()

        background: FieldBox {
            focused: input.activeFocus
            wrong: root.wrong
            readOnly: input.readOnly || !input.enabled
            hovered: input.hovered
        }

        Icon {
            visible: root.iconName.length > 0
            name: root.iconName
            color: Theme.mute
            anchors.left: parent.left
            anchors.leftMargin: 10
            anchors.verticalCenter: parent.verticalCenter
        }
        Text {
            visible: !input.text && !input.preeditText && root.placeholder.length > 0
            x: input.leftPadding
            width: input.width - input.leftPadding - input.rightPadding
            anchors.verticalCenter: parent.verticalCenter
            text: root.placeholder
            font: input.font
            color: Theme.faint
            horizontalAlignment: input.horizontalAlignment
            elide: Text.ElideRight
            textFormat: Text.PlainText
        }
        Text {
            id: unitText
            visible: root.unit.length > 0
            anchors.right: parent.right
            anchors.rightMargin: 11 + (root.trailingIcon ? 26 : 0)
            anchors.verticalCenter: parent.verticalCenter
            text: root.unit
            font: Theme.fonts.body
            color: Theme.mute
        }
        IconButton {
            visible: root.trailingIcon.length > 0
            enabled: !input.readOnly && input.enabled
            anchors.right: parent.right
            anchors.rightMargin: 3
            anchors.verticalCenter: parent.verticalCenter
            implicitWidth: 30
            implicitHeight: 30
            focusPolicy: Qt.NoFocus
            iconName: root.trailingIcon
            tip: root.trailingTip
            onClicked: root.trailingClicked()
        }
    }
}
