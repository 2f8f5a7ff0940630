import QtQuick
import Thalvorn

// The pages of the program, each made when it is first opened and kept with its selection and scroll.
FocusScope {
    id: root

    // Pages wait until the shell has been drawn once; before that there is nothing for them to show.
    property bool ready: false

    readonly property Item current: {
        for (let i = 0; i < repeater.count; ++i) {
            const loader = repeater.itemAt(i);
            if (loader && loader.shown)
                return loader.item;
        }
        return null;
    }

    Keys.onEscapePressed: (event) => {
        if (App.isSubPage)
            App.back();
        else
            event.accepted = false;
    }

    Repeater {
        id: repeater
        model: App.pages
        delegate: Loader {
            required property var modelData
            readonly property bool shown: App.page === modelData.id
            readonly property bool wanted: shown && root.ready
            readonly property var args: shown ? App.pageArguments : null

            anchors.fill: parent
            visible: shown
            focus: shown
            onShownChanged: take()
            onWantedChanged: take()
            onArgsChanged: give()
            onLoaded: give()
            Component.onCompleted: take()

            function take() {
                if (wanted && source.toString() === "")
                    source = modelData.source;
                if (item)
                    item.current = shown;
                if (shown)
                    forceActiveFocus();
            }
            function give() {
                if (!item)
                    return;
                item.current = shown;
                if (args !== null) {
                    item.args = args;
                    item.opened(args);
                }
            }
        }
    }
}
