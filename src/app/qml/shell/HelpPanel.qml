import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// A panel at the window's side that explains the page in view (F1), or how task status is determined.
T.Drawer {
    id: root

    property Item page: null
    property bool status: false

    function showPage() {
        status = false;
        if (opened)
            close();
        else
            open();
    }
    function showStatus() {
        status = true;
        open();
    }

    edge: Qt.RightEdge
    width: 380
    height: parent ? parent.height : 0
    parent: T.Overlay.overlay
    modal: false
    interactive: false
    dim: false
    padding: 0
    focus: true
    closePolicy: T.Popup.CloseOnEscape

    background: Rectangle {
        color: Theme.card
        Rectangle { width: Theme.hairline; height: parent.height; color: Theme.line }
    }
    enter: Transition { NumberAnimation { duration: Theme.calm; easing.type: Easing.OutCubic } }
    exit: Transition { NumberAnimation { duration: Theme.fast } }

    contentItem: FocusScope {
        focus: true
        Accessible.role: Accessible.Pane
        Accessible.name: "Help"
        Keys.onEscapePressed: root.close()

        RowLayout {
            id: head
            x: Theme.sheetPadding
            width: parent.width - Theme.sheetPadding - Theme.space3
            height: Theme.headHeight
            Icon { name: "question" }
            AppText { text: "Help"; variant: "strong"; Layout.fillWidth: true }
            IconButton { iconName: "x"; tip: "Close (Esc)"; onClicked: root.close() }
        }
        Divider { y: Theme.headHeight; width: parent.width }
        Flickable {
            id: flick
            anchors.fill: parent
            anchors.topMargin: Theme.headHeight + 1
            contentWidth: width
            contentHeight: column.implicitHeight + Theme.sheetPadding * 2
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: AppScrollBar {}
            ColumnLayout {
                id: column
                x: Theme.sheetPadding
                y: Theme.sheetPadding
                width: flick.width - Theme.sheetPadding * 2
                spacing: Theme.space4

                AppText {
                    visible: !root.status && root.page !== null
                    text: root.page ? root.page.title : ""
                    variant: "subtitle"
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
                Loader {
                    active: root.opened && !root.status && root.page !== null && root.page.help !== null
                    visible: active
                    sourceComponent: root.page ? root.page.help : null
                    Layout.fillWidth: true
                }
                Loader {
                    active: root.status
                    visible: active
                    sourceComponent: Component { StatusHelp {} }
                    Layout.fillWidth: true
                }
                ColumnLayout {
                    visible: !root.status
                    spacing: 6
                    Layout.fillWidth: true
                    AppText { text: "Keys"; variant: "smallStrong"; Layout.fillWidth: true }
                    Repeater {
                        model: [
                            ["Ctrl K", "find anything"], ["Ctrl F", "search this page"], ["Ctrl N", "add"],
                            ["↑ ↓ Enter", "choose and open in lists"], ["Ctrl S", "save a form"], ["Esc", "leave"],
                            ["Ctrl Z", "undo"], ["Alt ←", "back"], ["Ctrl 1 … 9", "open a module"]
                        ]
                        delegate: RowLayout {
                            required property var modelData
                            spacing: Theme.space3
                            Layout.fillWidth: true
                            AppText { text: modelData[0]; variant: "smallMedium"; Layout.preferredWidth: 92 }
                            AppText { text: modelData[1]; variant: "small"; Layout.fillWidth: true }
                        }
                    }
                }
                LinkButton {
                    visible: !root.status
                    text: "How task status is determined"
                    iconName: "question"
                    onClicked: root.status = true
                }
            }
        }
    }
}
