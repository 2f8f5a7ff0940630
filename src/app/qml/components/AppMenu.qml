import QtQuick
import QtQuick.Templates as T
import Thalvorn

// A menu in the program's look.
T.Menu {
    id: root

    property real minimumWidth: 200

    // Before the menu shows: the time to make its entries where they are many.
    signal fillRequested

    function widest() {
        let wide = minimumWidth;
        for (let i = 0; i < count; ++i)
            wide = Math.max(wide, itemAt(i)?.implicitWidth ?? 0);
        return Math.min(wide, 420);
    }

    implicitWidth: widest() + leftPadding + rightPadding
    implicitHeight: contentHeight + topPadding + bottomPadding
    padding: 6
    margins: Theme.space2
    overlap: 2
    onAboutToShow: {
        fillRequested();
        implicitWidth = widest() + leftPadding + rightPadding;
    }

    delegate: AppMenuItem {}

    contentItem: ListView {
        implicitHeight: contentHeight
        model: root.contentModel
        interactive: Window.window ? contentHeight + root.topPadding + root.bottomPadding > Window.window.height : false
        clip: interactive
        currentIndex: root.currentIndex
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

    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.fast } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.fast } }
}
