import QtQuick
import Thalvorn

// Holds the form that is open over the window.
Item {
    id: root

    readonly property bool busy: loader.item !== null && loader.item.opened
    readonly property bool dirty: busy && loader.item.dirty === true

    function show(source, properties) {
        loader.setSource(source, properties);
        if (loader.item)
            loader.item.open();
    }

    /// Takes the form away; what was entered stays as its draft.
    function discard() { loader.source = ""; }

    Loader { id: loader }
    Connections {
        target: loader.item
        ignoreUnknownSignals: true
        function onClosed() { Qt.callLater(() => { if (loader.item && !loader.item.opened) loader.source = ""; }); }
    }
}
