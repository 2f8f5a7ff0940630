import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A table over a list model of any length. Only visible rows exist; they are reused while scrolling.
// Columns are TableColumn children. A model with the roles isSection, sectionTitle, sectionCount and sectionCollapsed
// (GroupedRows) shows headings that fold. Arrow keys, Page, Home, End and Enter work; Left and Right fold a heading.
// Space does what Enter does, unless the owner sets `marks` to give it a meaning of its own.
FocusScope {
    id: root

    property var model: null
    default property list<TableColumn> columns
    property string sortKey
    property bool descending: false
    property int rowHeight: Theme.rowHeight
    property bool framed: true
    property bool headerShown: true
    property string idRole: "id"
    property var selectedId
    property bool selectable: true
    property bool marks: false
    property alias currentIndex: view.currentIndex
    property alias count: view.count
    property alias view: view
    property alias footer: view.footer
    property string emptyTitle
    property string emptyText
    property string emptyIcon: "tray"
    property string emptyAction
    property string emptyActionIcon
    property string name

    signal sortRequested(string key, bool descending)
    signal selected(var row)
    signal activated(var row)
    signal marked(var row)
    signal tapped(var row)
    signal contextRequested(var row, real x, real y)
    signal deleteRequested(var row)
    signal emptyActivated()

    readonly property bool mirrored: LayoutMirroring.enabled
    readonly property int sidePadding: 12
    readonly property int gap: 14
    // Place and width of every column: fixed ones first, the rest shared out. Where that is too much for the table's
    // width, the columns that would go first in a narrower one go.
    readonly property var places: {
        const shown = [];
        let needed = sidePadding * 2 - gap;
        for (let i = 0; i < columns.length; ++i) {
            shown.push(width >= columns[i].hideBelow);
            if (shown[i])
                needed += (columns[i].width > 0 ? columns[i].width : columns[i].minimum) + gap;
        }
        while (needed > width) {
            let least = -1;
            for (let i = 0; i < columns.length; ++i)
                if (shown[i] && columns[i].hideBelow > 0 && (least < 0 || columns[i].hideBelow > columns[least].hideBelow))
                    least = i;
            if (least < 0)
                break;
            shown[least] = false;
            needed -= (columns[least].width > 0 ? columns[least].width : columns[least].minimum) + gap;
        }
        let fixed = 0;
        let shares = 0;
        for (let i = 0; i < columns.length; ++i) {
            if (!shown[i])
                continue;
            fixed += (columns[i].width > 0 ? columns[i].width : 0) + gap;
            shares += columns[i].width > 0 ? 0 : columns[i].share;
        }
        const left = Math.max(0, width - sidePadding * 2 - fixed + gap);
        const result = [];
        let x = sidePadding;
        for (let i = 0; i < columns.length; ++i) {
            const column = columns[i];
            const w = !shown[i] ? 0 : column.width > 0 ? column.width : Math.max(column.minimum, Math.floor(left * column.share / shares));
            result.push({ x: mirrored ? width - x - w : x, w: w, visible: shown[i] });
            if (shown[i])
                x += w + gap;
        }
        return result;
    }

    // What a cell reads of its row: the model's roles, and the last values once the row is taken down, which happens
    // before its cells are.
    function cellRow(item) {
        return new Proxy({}, {
            get: (kept, role) => {
                const now = item.model;
                if (now)
                    kept[role] = now[role];
                return kept[role];
            }
        });
    }
    function rowAt(index) {
        const item = view.itemAtIndex(index);
        return item ? item.row : null;
    }
    function select(index) {
        if (index < 0 || index >= view.count)
            return;
        view.currentIndex = index;
        view.positionViewAtIndex(index, ListView.Contain);
        const row = rowAt(index);
        if (row && !row.isSection && selectable) {
            selectedId = row[idRole];
            selected(row);
        }
    }
    function fold(index, collapsed) {
        if (model && model.setCollapsed)
            model.setCollapsed(index, collapsed);
    }
    function focusList() {
        view.forceActiveFocus(Qt.TabFocusReason);
        if (view.currentIndex < 0 && view.count > 0)
            select(0);
    }
    function showId(id) {
        const at = model && model.rowOf ? model.rowOf(id) : -1;
        if (at >= 0)
            select(at);
        return at >= 0;
    }

    Accessible.role: Accessible.Table
    Accessible.name: name

    // A reset of the model keeps the place the user was looking at, and the selection.
    Connections {
        target: root.model
        ignoreUnknownSignals: true
        property real place: 0
        function onModelAboutToBeReset() { place = view.contentY - view.originY; }
        function onModelReset() { Qt.callLater(restore); }
        function restore() {
            const at = root.model && root.model.rowOf && root.selectedId !== undefined ? root.model.rowOf(root.selectedId) : -1;
            view.currentIndex = at;
            view.contentY = view.originY + Math.max(0, Math.min(place, view.contentHeight - view.height));
        }
    }

    Rectangle {
        visible: root.framed
        anchors.fill: parent
        radius: Theme.radiusCard
        color: Theme.card
        border.width: Theme.hairline
        border.color: Theme.line
    }

    Item {
        id: header
        visible: root.headerShown
        width: parent.width
        height: visible ? 37 : 0

        Repeater {
            model: root.columns
            delegate: T.AbstractButton {
                id: head
                required property var modelData
                required property int index
                readonly property var place: root.places[index] ?? { x: 0, w: 0, visible: false }
                readonly property bool sorts: modelData.sortKey.length > 0
                readonly property bool sorted: sorts && root.sortKey === modelData.sortKey

                x: place.x
                width: place.w
                height: header.height
                visible: place.visible
                enabled: sorts
                hoverEnabled: true
                focusPolicy: sorts ? Qt.TabFocus : Qt.NoFocus
                Accessible.role: Accessible.ColumnHeader
                Accessible.name: modelData.title
                Accessible.description: sorted ? (root.descending ? "sorted, descending" : "sorted, ascending") : ""
                onClicked: root.sortRequested(modelData.sortKey, sorted ? !root.descending : false)
                Keys.onReturnPressed: clicked()

                Row {
                    spacing: 4
                    anchors.verticalCenter: parent.verticalCenter
                    anchors.left: head.modelData.alignRight ? undefined : parent.left
                    anchors.right: head.modelData.alignRight ? parent.right : undefined
                    Text {
                        text: head.modelData.title
                        font: Theme.fonts.smallMedium
                        color: head.sorted || head.hovered && head.sorts ? Theme.ink : Theme.mute
                        elide: Text.ElideRight
                        width: Math.min(implicitWidth, head.width - (head.sorted ? 18 : 0))
                    }
                    Icon {
                        visible: head.sorted
                        name: root.descending ? "caret-down" : "caret-up"
                        size: 13
                        color: Theme.accent
                        anchors.verticalCenter: parent.verticalCenter
                    }
                }
                FocusRing { offset: 0; radius: Theme.radiusSmall }
            }
        }
        Divider { anchors.bottom: parent.bottom; width: parent.width }
    }

    ListView {
        id: view
        objectName: "taskView"
        anchors.fill: parent
        anchors.topMargin: header.height
        anchors.bottomMargin: root.framed ? 1 : 0
        anchors.leftMargin: root.framed ? 1 : 0
        anchors.rightMargin: root.framed ? 1 : 0
        model: root.model
        focus: true
        clip: true
        reuseItems: true
        cacheBuffer: 0
        currentIndex: -1
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        highlightFollowsCurrentItem: false
        activeFocusOnTab: true
        keyNavigationEnabled: false
        T.ScrollBar.vertical: AppScrollBar {}
        onActiveFocusChanged: if (activeFocus && currentIndex < 0 && count > 0) root.select(0)

        Keys.onPressed: (event) => {
            const page = Math.max(1, Math.floor(height / root.rowHeight) - 1);
            const row = root.rowAt(currentIndex);
            const section = row ? row.isSection === true : false;
            let taken = true;
            switch (event.key) {
            case Qt.Key_Down: root.select(Math.min(count - 1, currentIndex + 1)); break;
            case Qt.Key_Up: root.select(Math.max(0, currentIndex - 1)); break;
            case Qt.Key_PageDown: root.select(Math.min(count - 1, currentIndex + page)); break;
            case Qt.Key_PageUp: root.select(Math.max(0, currentIndex - page)); break;
            case Qt.Key_Home: root.select(0); break;
            case Qt.Key_End: root.select(count - 1); break;
            case Qt.Key_Left:
            case Qt.Key_Right:
                if (section) root.fold(currentIndex, event.key === Qt.Key_Left); else taken = false;
                break;
            case Qt.Key_Return:
            case Qt.Key_Enter:
            case Qt.Key_Space:
                if (section) root.fold(currentIndex, !row.sectionCollapsed); else if (row && root.marks && event.key === Qt.Key_Space) root.marked(row); else if (row) root.activated(row); else taken = false;
                break;
            case Qt.Key_Delete: if (row && !section) root.deleteRequested(row); else taken = false; break;
            case Qt.Key_Menu: if (row && !section) root.contextRequested(row, 40, view.currentItem.y - view.contentY + header.height + root.rowHeight); else taken = false; break;
            default: taken = false;
            }
            event.accepted = taken;
        }

        delegate: Item {
            id: line

            required property var model
            required property int index
            readonly property var row: model
            readonly property var cellRow: root.cellRow(line)
            readonly property bool section: model.isSection === true
            readonly property bool chosen: root.selectable && !section && root.selectedId !== undefined && model[root.idRole] === root.selectedId

            width: ListView.view ? ListView.view.width : 0
            height: section ? Theme.sectionHeight : root.rowHeight
            Accessible.role: section ? Accessible.Grouping : Accessible.Row
            Accessible.name: section ? model.sectionTitle + " " + model.sectionCount : String(model[root.columns.length > 0 ? root.columns[0].role : "title"] ?? "")
            Accessible.selected: chosen

            Rectangle {
                anchors.fill: parent
                color: line.section ? Theme.sectionBg : line.chosen ? Theme.accentBg : hover.hovered ? Theme.hover : Theme.card
                opacity: line.section || line.chosen || hover.hovered ? 1 : 0
            }
            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: Theme.hairline
                color: Theme.line
            }
            Rectangle {
                visible: view.activeFocus && line.index === view.currentIndex
                anchors.fill: parent
                anchors.margins: 1
                radius: Theme.radiusSmall
                color: "transparent"
                border.width: 2
                border.color: Theme.accent
            }

            HoverHandler { id: hover }
            TapHandler {
                acceptedButtons: Qt.LeftButton | Qt.RightButton
                gesturePolicy: TapHandler.ReleaseWithinBounds
                onTapped: (point, button) => {
                    view.forceActiveFocus(Qt.MouseFocusReason);
                    if (line.section) {
                        view.currentIndex = line.index;
                        root.fold(line.index, !line.model.sectionCollapsed);
                        return;
                    }
                    root.select(line.index);
                    if (button === Qt.LeftButton)
                        root.tapped(line.row);
                    if (button === Qt.RightButton) {
                        const place = line.mapToItem(root, point.position.x, point.position.y);
                        root.contextRequested(line.row, place.x, place.y);
                    }
                }
                onDoubleTapped: (point, button) => {
                    if (!line.section && button === Qt.LeftButton)
                        root.activated(line.row);
                }
            }

            Loader {
                active: line.section
                anchors.fill: parent
                sourceComponent: Item {
                    Icon {
                        x: root.mirrored ? parent.width - 12 - width : 12
                        anchors.verticalCenter: parent.verticalCenter
                        name: line.model.sectionCollapsed ? "caret-right" : "caret-down"
                        size: 14
                        color: Theme.mute
                    }
                    Row {
                        x: root.mirrored ? parent.width - 32 - width : 32
                        anchors.verticalCenter: parent.verticalCenter
                        spacing: 5
                        Text { text: line.model.sectionTitle ?? ""; font: Theme.fonts.smallStrong; color: Theme.ink; textFormat: Text.PlainText }
                        Text { text: line.model.sectionCount ?? ""; font: Theme.fonts.small; color: Theme.mute }
                    }
                }
            }

            Repeater {
                model: line.section ? [] : root.columns
                delegate: Loader {
                    required property var modelData
                    required property int index
                    readonly property var row: line.cellRow
                    readonly property bool selected: line.chosen
                    readonly property bool alignRight: modelData.alignRight
                    readonly property var place: root.places[index] ?? { x: 0, w: 0, visible: false }

                    x: place.x
                    width: place.w
                    height: line.height
                    visible: place.visible
                    sourceComponent: modelData.cell ?? plain

                    Component {
                        id: plain
                        TextCell {
                            text: String(line.model[modelData.role] ?? "")
                            variant: modelData.strong ? "medium" : "body"
                            ink: modelData.muted ? Theme.mute : Theme.ink
                        }
                    }
                }
            }
        }
    }

    EmptyState {
        anchors.fill: parent
        anchors.topMargin: header.height
        visible: view.count === 0 && root.emptyTitle.length > 0
        icon: root.emptyIcon
        title: root.emptyTitle
        text: root.emptyText
        actionText: root.emptyAction
        actionIcon: root.emptyActionIcon
        onAction: root.emptyActivated()
    }
}
