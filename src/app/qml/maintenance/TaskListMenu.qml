import QtQuick
import Thalvorn

// What can be done with a whole list of tasks: print it, export it, bring more in.
IconButton {
    id: root

    property var list: null

    function printList() {
        Reports.openWorkList(list);
    }
    function exportCsv() {
        saveCsv.open();
    }
    // The menu commands that concern a whole list.
    function take(name) {
        if (!Maintenance.hasVessel)
            return;
        if (name === "printPage")
            printList();
        else if (name === "exportPage")
            exportCsv();
    }

    iconName: "dots-three"
    outlined: true
    tip: "Print, export, import"
    enabled: Maintenance.hasVessel
    onClicked: menu.openBelow(root)

    OptionMenu {
        id: menu
        options: [
            { value: "print", text: "Print the work list…", icon: "file-text" },
            { value: "export", text: "Export as CSV…", icon: "file-csv" },
            { separator: true },
            { value: "import", text: "Import tasks from CSV…", icon: "tray" }
        ]
        onPicked: (value) => {
            if (value === "print")
                root.printList();
            else if (value === "export")
                root.exportCsv();
            else
                App.post("openImportTasksCSV");
        }
    }
    FileChooser {
        id: saveCsv
        title: "Export the work list"
        saving: true
        suggestedName: Reports.workListFileName()
        nameFilters: ["CSV files (*.csv)"]
        onChosen: (file) => Reports.exportWorkList(root.list, file)
    }
}
