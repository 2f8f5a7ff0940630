import QtQuick
import QtQuick.Dialogs
import Qt.labs.platform as Platform
import Thalvorn

// The desktop's file dialog, made when it is first opened. `chosen` reports a file, or several with `multiple`.
Item {
    id: root

    property string title
    property var nameFilters: []
    property bool saving: false
    property bool multiple: false
    property string suggestedName
    property url folder: Platform.StandardPaths.writableLocation(Platform.StandardPaths.DocumentsLocation)
    signal chosen(url file)
    signal chosenMany(var files)

    visible: false

    function open() {
        loader.active = true;
        if (saving && suggestedName)
            loader.item.selectedFile = folder + "/" + suggestedName;
        loader.item.open();
    }

    Loader {
        id: loader
        active: false
        sourceComponent: FileDialog {
            title: root.title
            nameFilters: root.nameFilters
            currentFolder: root.folder
            fileMode: root.saving ? FileDialog.SaveFile : root.multiple ? FileDialog.OpenFiles : FileDialog.OpenFile
            onAccepted: {
                root.folder = currentFolder;
                if (root.multiple)
                    root.chosenMany(selectedFiles);
                else
                    root.chosen(selectedFile);
            }
        }
    }
}
