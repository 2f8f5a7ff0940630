import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// A page's cards in a column that scrolls and keeps the field with the focus in sight.
Flickable {
    id: root

    property int maximumWidth: 1240
    default property alias content: column.data

    contentWidth: width
    contentHeight: column.implicitHeight + Theme.pagePadding * 2
    boundsBehavior: Flickable.StopAtBounds
    T.ScrollBar.vertical: AppScrollBar {}

    readonly property Item focusItem: Window.activeFocusItem
    onFocusItemChanged: {
        for (let p = focusItem; p; p = p.parent) {
            if (p !== column)
                continue;
            const top = focusItem.mapToItem(column, 0, 0).y + Theme.pagePadding;
            if (top - 40 < contentY)
                contentY = Math.max(0, top - 40);
            else if (top + focusItem.height + 40 > contentY + height)
                contentY = Math.max(0, Math.min(contentHeight - height, top + focusItem.height + 40 - height));
            return;
        }
    }

    ColumnLayout {
        id: column
        x: Theme.pagePadding
        y: Theme.pagePadding
        width: Math.min(root.width - Theme.pagePadding * 2, root.maximumWidth)
        spacing: Theme.space4
    }
}
