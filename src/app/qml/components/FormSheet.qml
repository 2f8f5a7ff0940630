import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// A form over the window. Ctrl+S or the main button asks the owner to save (`saveRequested`), who closes it when done;
// Escape leaves, and asks first when `dirty`. Content stacks in a column; use FieldRow for columns.
ModalBase {
    id: root

    property string title
    property string subtitle
    property string actionText: "Save"
    property string actionIcon: "check"
    property bool dirty: false
    property bool canSave: true
    property bool busy: false
    property bool covered: false  // by another sheet, which has the keys
    property bool compulsory: false  // cannot be left; the footer offers another way out
    property string error
    property int sheetWidth: 760
    property string footNote
    property alias footer: footSlot.data
    default property alias content: column.data
    signal saveRequested()
    signal left()

    function leave() {
        if (busy || compulsory)
            return;
        if (dirty)
            discard.open();
        else {
            close();
            left();
        }
    }
    function save() {
        // What is still being typed reaches the form before it is saved.
        const item = root.parent?.Window.window?.activeFocusItem ?? null;
        if (item)
            item.focus = false;
        if (item)
            item.focus = true;
        const unread = find(column, (field) => field.unreadable === true);
        if (unread)
            unread.forceFocus();
        else if (canSave && !busy)
            saveRequested();
    }

    width: Math.min(Math.max(Theme.sheetMin, Math.min(Theme.sheetMax, sheetWidth)), parent ? parent.width - Theme.space8 : Theme.sheetMin)
    height: Math.min(implicitHeight, parent ? parent.height - Theme.space8 : implicitHeight)
    implicitHeight: headHeight + column.implicitHeight + Theme.sheetPadding * 2 + footHeight
                    + (banner.visible ? banner.implicitHeight + Theme.sheetPadding : 0) + 2
    onOpened: {
        const item = root.contentItem.Window.activeFocusItem;
        if (!item || item === root.contentItem || item === closeButton)
            firstField();
    }

    readonly property int headHeight: titles.implicitHeight + Theme.space4 * 2
    readonly property int footHeight: Theme.controlHeight + Theme.space3 * 2

    function firstField() {
        const next = column.nextItemInFocusChain(true);
        if (next)
            next.forceActiveFocus(Qt.TabFocusReason);
    }

    function find(among, test) {
        const items = among.children;
        for (let i = 0; i < items.length; ++i) {
            const item = items[i];
            const found = !item.visible ? null : test(item) ? item : find(item, test);
            if (found)
                return found;
        }
        return null;
    }
    // Puts the focus into the Field of this name, if there is one.
    function focusField(name) {
        if (name)
            find(column, (item) => item.name === name && item.form)?.forceFocus();
    }

    contentItem: FocusScope {
        focus: true
        Accessible.role: Accessible.Dialog
        Accessible.name: root.title
        Keys.onEscapePressed: root.leave()

        Shortcut { sequences: ["Ctrl+S"]; enabled: root.opened && !discard.opened && !root.covered; onActivated: root.save() }

        ColumnLayout {
            anchors.fill: parent
            spacing: 0

            RowLayout {
                spacing: Theme.space3
                Layout.fillWidth: true
                Layout.preferredHeight: root.headHeight
                Layout.leftMargin: Theme.sheetPadding
                Layout.rightMargin: Theme.space3
                ColumnLayout {
                    id: titles
                    spacing: 1
                    Layout.fillWidth: true
                    AppText { text: root.title; variant: "subtitle"; Layout.fillWidth: true; Accessible.role: Accessible.Heading }
                    AppText { visible: root.subtitle.length > 0; text: root.subtitle; variant: "small"; Layout.fillWidth: true }
                }
                IconButton { id: closeButton; visible: !root.compulsory; iconName: "x"; tip: "Close"; implicitWidth: 32; implicitHeight: 32; onClicked: root.leave() }
            }
            Divider { Layout.fillWidth: true }

            ErrorBanner {
                id: banner
                text: root.error
                dismissable: false
                Layout.fillWidth: true
                Layout.margins: Theme.sheetPadding
                Layout.bottomMargin: 0
            }

            Flickable {
                id: flick
                Layout.fillWidth: true
                Layout.fillHeight: true
                contentWidth: width
                contentHeight: column.implicitHeight + Theme.sheetPadding * 2
                boundsBehavior: Flickable.StopAtBounds
                clip: contentHeight > height
                T.ScrollBar.vertical: AppScrollBar {}

                // Keeps the field with the focus in sight.
                readonly property Item focusItem: Window.activeFocusItem
                onFocusItemChanged: {
                    if (!focusItem || contentHeight <= height)
                        return;
                    for (let p = focusItem; p; p = p.parent) {
                        if (p !== column)
                            continue;
                        const top = focusItem.mapToItem(column, 0, 0).y + Theme.sheetPadding;
                        if (top - 40 < contentY)
                            contentY = Math.max(0, top - 40);
                        else if (top + focusItem.height + 40 > contentY + height)
                            contentY = Math.min(contentHeight - height, top + focusItem.height + 40 - height);
                        return;
                    }
                }

                ColumnLayout {
                    id: column
                    x: Theme.sheetPadding
                    y: Theme.sheetPadding
                    width: flick.width - Theme.sheetPadding * 2
                    spacing: Theme.space4
                }
            }

            Divider { Layout.fillWidth: true }
            RowLayout {
                spacing: Theme.space2
                Layout.fillWidth: true
                Layout.preferredHeight: root.footHeight
                Layout.leftMargin: Theme.sheetPadding
                Layout.rightMargin: Theme.sheetPadding
                RowLayout { id: footSlot; visible: children.length > 0; spacing: Theme.space2 }
                AppText { text: root.footNote; variant: "small"; Layout.fillWidth: true }
                SecondaryButton { visible: !root.compulsory; text: "Cancel"; onClicked: root.leave() }
                PrimaryButton {
                    text: root.actionText
                    iconName: root.actionIcon
                    busy: root.busy
                    enabled: root.canSave && !root.busy
                    tip: "Ctrl+S"
                    onClicked: root.save()
                }
            }
        }
    }

    ConfirmDialog {
        id: discard
        title: "Discard your changes?"
        text: "What you entered here has not been saved."
        confirmText: "Discard"
        cancelText: "Keep editing"
        onConfirmed: { root.dirty = false; root.close(); root.left(); }
    }
}
