import QtQuick
import QtQuick.Layouts
import Thalvorn

// Fields side by side in columns of one width; they stack when there is no room.
GridLayout {
    id: root

    property int minimumColumn: 150
    readonly property int fields: {
        let n = 0;
        for (let i = 0; i < children.length; ++i)
            if (children[i].visible)
                ++n;
        return Math.max(1, n);
    }

    columns: Math.max(1, Math.min(fields, Math.floor((width + columnSpacing) / (minimumColumn + columnSpacing))))
    columnSpacing: Theme.space3
    rowSpacing: Theme.space3
    Layout.fillWidth: true
}
