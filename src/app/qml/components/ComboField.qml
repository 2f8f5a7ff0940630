import QtQuick
import QtQuick.Templates as T
import Thalvorn

// One of a list. options: [{value, text, icon?}]; the owner sets `value`, `picked` reports a choice.
// Typing jumps to the option that begins so.
FieldFrame {
    id: root

    property var options: []
    property var value
    property string placeholder: "Choose…"
    property bool readOnly: false
    readonly property int index: {
        for (let i = 0; i < options.length; ++i)
            if (options[i].value === value)
                return i;
        return -1;
    }
    signal picked(var value)

    function forceFocus() {
        box.forceActiveFocus(Qt.TabFocusReason);
    }

    T.ComboBox {
        id: box

        property string typed

        width: parent.width
        implicitHeight: Theme.controlHeight
        implicitWidth: 160
        leftPadding: mirrored ? 34 : 11
        rightPadding: mirrored ? 11 : 34
        enabled: !root.readOnly
        model: root.options
        textRole: "text"
        currentIndex: root.index
        focusPolicy: Qt.StrongFocus
        hoverEnabled: true
        Accessible.role: Accessible.ComboBox
        Accessible.name: root.label
        Accessible.description: root.message || root.hint
        onActivated: (index) => root.picked(root.options[index].value)
        Keys.onPressed: (event) => {
            if (event.text.length === 1 && event.text > " " && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier))) {
                typed += event.text.toLowerCase();
                forget.restart();
                const at = root.options.findIndex((option) => option.text.toLowerCase().startsWith(typed));
                if (at >= 0)
                    root.picked(root.options[at].value);
                event.accepted = true;
            } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                popup.open();
                event.accepted = true;
            }
        }
        Timer {
            id: forget
            interval: 1000
            onTriggered: box.typed = ""
        }

        contentItem: Item {
            Icon {
                id: icon
                visible: (root.options[root.index]?.icon ?? "") !== ""
                name: root.options[root.index]?.icon ?? ""
                color: Theme.mute
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
            }
            AppText {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.leftMargin: icon.visible ? 26 : 0
                anchors.verticalCenter: parent.verticalCenter
                text: root.index >= 0 ? root.options[root.index].text : root.placeholder
                color: root.index >= 0 ? (root.readOnly ? Theme.mute : Theme.ink) : Theme.faint
            }
        }

        indicator: Icon {
            x: box.mirrored ? 11 : box.width - width - 11
            anchors.verticalCenter: parent.verticalCenter
            name: "caret-down"
            size: 14
            color: Theme.mute
        }

        background: FieldBox {
            focused: box.activeFocus
            wrong: root.wrong
            readOnly: root.readOnly
            hovered: box.hovered
        }

        delegate: AppMenuItem {
            required property int index
            required property var modelData
            width: ListView.view ? ListView.view.width : 0
            text: modelData.text
            iconName: modelData.icon ?? ""
            checked: index === root.index
            highlighted: box.highlightedIndex === index
        }

        popup: T.Popup {
            y: box.height + Theme.space1
            width: Math.max(box.width, 180)
            implicitHeight: Math.min(list.contentHeight + 12, 340)
            padding: 6
            margins: Theme.space2
            contentItem: ListView {
                id: list
                clip: true
                model: box.popup.visible ? box.delegateModel : null
                currentIndex: box.highlightedIndex
                boundsBehavior: Flickable.StopAtBounds
                T.ScrollBar.vertical: AppScrollBar {}
            }
            background: Item {
                SheetShadow { anchors.fill: parent; radius: 10 }
                Rectangle {
                    anchors.fill: parent
                    radius: 10
                    color: Theme.raised
                    border.width: Theme.hairline
                    border.color: Theme.controlLine
                }
            }
        }
    }
}
