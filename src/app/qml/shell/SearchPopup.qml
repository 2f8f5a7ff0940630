import QtQuick
import QtQuick.Templates as T
import Thalvorn

// Finds anything by a few letters: records, pages, commands. Arrows choose, Enter opens.
ModalBase {
    id: root

    width: Math.min(640, parent ? parent.width - Theme.space8 * 2 : 640)
    height: Math.min(parent ? parent.height - 120 : 460, 64 + (list.count > 0 ? list.contentHeight + 16 : 90))
    anchors.centerIn: undefined
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: 80
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    onAboutToShow: {
        field.clear();
        field.asked = "";
        Search.words = "";
        list.currentIndex = 0;
    }
    onOpened: field.forceFocus()

    contentItem: FocusScope {
        focus: true
        Accessible.role: Accessible.Dialog
        Accessible.name: "Search everything"

        SearchField {
            id: field
            property string asked
            x: Theme.space3
            y: Theme.space3
            width: parent.width - Theme.space3 * 2
            implicitHeight: 40
            height: 40
            focus: true
            pause: 60
            placeholder: "Search tasks, history, vessels and commands"
            keyHint: "Esc"
            onEdited: (text) => {
                if (text === asked)
                    return;  // Enter after the arrows: nothing new was typed
                asked = text;
                Search.words = text;
                list.currentIndex = 0;
            }
            onDownPressed: list.step(1)
            Keys.onUpPressed: list.step(-1)
            Keys.onReturnPressed: Search.choose(Math.max(0, list.currentIndex))
            Keys.onEnterPressed: Search.choose(Math.max(0, list.currentIndex))
        }
        Divider { y: 63; width: parent.width }
        ListView {
            id: list
            anchors.fill: parent
            anchors.topMargin: 64 + 8
            anchors.bottomMargin: 8
            anchors.leftMargin: Theme.space2
            anchors.rightMargin: Theme.space2
            clip: true
            model: Search
            boundsBehavior: Flickable.StopAtBounds
            highlightMoveDuration: 0
            onCountChanged: if (currentIndex < 0) currentIndex = 0

            // Finds that come in later may have taken the current line away: the first one counts as such.
            function step(by) {
                currentIndex = Math.max(0, Math.min(count - 1, Math.max(0, currentIndex) + by));
            }
            T.ScrollBar.vertical: AppScrollBar {}
            section.property: "group"
            section.delegate: Text {
                required property string section
                leftPadding: 10
                topPadding: 8
                bottomPadding: 4
                text: section
                font: Theme.fonts.smallMedium
                color: Theme.mute
            }
            delegate: Rectangle {
                id: hit
                required property int index
                required property string title
                required property string detail
                required property string icon
                width: ListView.view ? ListView.view.width : 0
                height: 40
                radius: Theme.radiusControl
                color: ListView.isCurrentItem ? Theme.accentBg : hitHover.hovered ? Theme.hover : "transparent"
                Accessible.role: Accessible.ListItem
                Accessible.name: title + (detail ? ", " + detail : "")
                Icon { anchors.left: parent.left; anchors.leftMargin: 10; anchors.verticalCenter: parent.verticalCenter; name: hit.icon; color: Theme.mute }
                AppText {
                    id: name
                    anchors.left: parent.left
                    anchors.leftMargin: 40
                    width: Math.min(implicitWidth, parent.width * 0.62)
                    anchors.verticalCenter: parent.verticalCenter
                    text: hit.title
                }
                AppText {
                    anchors.right: parent.right
                    anchors.rightMargin: 12
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(implicitWidth, parent.width - name.width - 68)
                    text: hit.detail
                    variant: "small"
                }
                HoverHandler { id: hitHover }
                TapHandler { onTapped: Search.choose(hit.index) }
            }
        }
        AppText {
            visible: list.count === 0 && !Search.busy
            anchors.horizontalCenter: parent.horizontalCenter
            y: 96
            text: "Nothing found for “" + Search.words + "”"
            color: Theme.mute
        }
    }
}
