import QtQuick
import QtQuick.Templates as T
import Thalvorn

// Several lines of text. Tab leaves the field; Ctrl+Tab writes one.
FieldFrame {
    id: root

    property alias text: area.text
    property string placeholder
    property alias readOnly: area.readOnly
    property alias input: area
    property int rows: 3
    property bool monospace: false
    property bool wrap: true
    property bool fillHeight: false
    signal edited(string text)

    stretch: fillHeight

    function forceFocus() {
        area.forceActiveFocus(Qt.TabFocusReason);
    }

    Item {
        width: parent.width
        height: root.fillHeight ? parent.height : implicitHeight
        implicitHeight: root.rows * 20 + 18
        implicitWidth: 240

        FieldBox {
            anchors.fill: parent
            focused: area.activeFocus
            wrong: root.wrong
            readOnly: area.readOnly || !area.enabled
            hovered: hover.hovered
        }
        HoverHandler { id: hover }

        Flickable {
            id: flick
            anchors.fill: parent
            anchors.margins: 1
            clip: true
            contentWidth: root.wrap ? width : Math.max(width, area.implicitWidth)
            contentHeight: area.implicitHeight
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: AppScrollBar {}
            T.ScrollBar.horizontal: AppScrollBar { visible: !root.wrap && size < 1 }

            function keepVisible(r) {
                if (contentY > r.y)
                    contentY = Math.max(0, r.y - 8);
                else if (contentY + height < r.y + r.height + 8)
                    contentY = r.y + r.height + 8 - height;
                if (contentX > r.x)
                    contentX = Math.max(0, r.x - 8);
                else if (contentX + width < r.x + 12)
                    contentX = r.x + 12 - width;
            }

            T.TextArea {
                id: area
                width: flick.contentWidth
                height: Math.max(implicitHeight, flick.height)
                implicitHeight: contentHeight + topPadding + bottomPadding
                implicitWidth: contentWidth + leftPadding + rightPadding
                padding: 11
                topPadding: 8
                bottomPadding: 8
                font: root.monospace ? Theme.fonts.mono : Theme.fonts.body
                color: Theme.ink
                selectionColor: Theme.accentFill
                selectedTextColor: Theme.accentInk
                wrapMode: root.wrap ? TextEdit.Wrap : TextEdit.NoWrap
                textFormat: TextEdit.PlainText
                selectByMouse: true
                activeFocusOnTab: true
                Accessible.role: Accessible.EditableText
                Accessible.name: root.label
                Accessible.multiLine: true
                Accessible.description: root.message || root.hint
                KeyNavigation.priority: KeyNavigation.BeforeItem
                Keys.onTabPressed: (event) => {
                    const next = area.nextItemInFocusChain(true);
                    if (next)
                        next.forceActiveFocus(Qt.TabFocusReason);
                }
                Keys.onBacktabPressed: (event) => {
                    const previous = area.nextItemInFocusChain(false);
                    if (previous)
                        previous.forceActiveFocus(Qt.BacktabFocusReason);
                }
                onCursorRectangleChanged: flick.keepVisible(cursorRectangle)
                onTextChanged: if (activeFocus) root.edited(text)

                Text {
                    visible: !area.text && !area.preeditText
                    x: area.leftPadding
                    y: area.topPadding
                    width: area.width - area.leftPadding - area.rightPadding
                    text: root.placeholder
                    font: area.font
                    color: Theme.faint
                    wrapMode: Text.Wrap
                    textFormat: Text.PlainText
                }
            }
        }
    }
}
