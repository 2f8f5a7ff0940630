import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import QtQuick.Window
import Thalvorn

// A report as it will look on paper, to read, print and save.
Page {
    id: root

    property real zoom: 0        // pixels to the point; 0 fits the width
    readonly property real fit: Reports.pageWidth > 0 ? Math.min(1.75, (view.width - 48) / Reports.pageWidth) : 1
    readonly property real scale: zoom > 0 ? zoom : fit

    title: Reports.title
    note: Reports.vesselName
    padding: 0
    actions: [
        DropdownButton {
            label: "Save"
            text: "Save as…"
            iconName: "floppy-disk"
            implicitHeight: Theme.controlHeight
            enabled: Reports.pageCount > 0 && !Reports.busy
            mark: false
            options: Reports.hasCsv ? [{ value: "pdf", text: "PDF file…", icon: "file-text" }, { value: "csv", text: "CSV file…", icon: "file-csv" }] : [{ value: "pdf", text: "PDF file…", icon: "file-text" }]
            onPicked: (value) => value === "csv" ? saveCsv.open() : savePdf.open()
        },
        DropdownButton {
            visible: Reports.hasPrinterCommand
            text: "Print"
            label: "Print"
            implicitHeight: Theme.controlHeight
            enabled: Reports.pageCount > 0 && !Reports.busy
            mark: false
            options: [{ value: "viewer", text: "Open in the PDF viewer to print…" }, { value: "printer", text: "Send to the default printer" }]
            onPicked: (value) => value === "viewer" ? Reports.printInViewer() : Reports.printDirectly()
        },
        PrimaryButton {
            visible: !Reports.hasPrinterCommand
            text: "Print…"
            tip: "Opens the report in the desktop’s PDF viewer, which prints it"
            enabled: Reports.pageCount > 0 && !Reports.busy
            onClicked: Reports.printInViewer()
        }
    ]
    commands: ["printPage", "exportPage"]
    onOpened: (args) => { if (args.report || !Reports.report) Reports.show(args); }
    onPosted: (name) => {
        if (name === "printPage")
            Reports.printInViewer();
        else if (name === "exportPage")
            Reports.hasCsv ? saveCsv.open() : savePdf.open();
    }
    help: Component {
        AppText {
            text: "The pages are drawn exactly as they will be printed. Page Up and Page Down turn them, Ctrl and + or − change the size, Ctrl+0 fits the width. Printing opens the report in the desktop’s own PDF viewer."
            wrapMode: Text.Wrap
        }
    }

    function change(factor) {
        zoom = Math.max(0.35, Math.min(4, scale * factor));
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        Toolbar {
            Layout.fillWidth: true
            Layout.margins: Theme.space3
            Layout.leftMargin: Theme.pagePadding
            Layout.rightMargin: Theme.pagePadding
            AppText {
                height: Theme.chipHeight
                verticalAlignment: Text.AlignVCenter
                text: Reports.pageCount > 0 ? "Page " + (view.page + 1) + " of " + Reports.pageCount : Reports.busy ? Reports.work : ""
                variant: "smallMedium"
                color: Theme.ink
            }
            ToolbarSeparator { visible: Reports.pageCount > 0 }
            Chip { iconName: "minus"; tip: "Smaller (Ctrl+−)"; Accessible.name: "Smaller"; onClicked: root.change(1 / 1.2) }
            Chip { text: root.zoom > 0 ? Math.round(root.scale * 75) + " %" : "Fit width"; checked: root.zoom === 0; tip: "Fit width (Ctrl+0)"; onClicked: root.zoom = 0 }
            Chip { iconName: "plus"; tip: "Larger (Ctrl++)"; Accessible.name: "Larger"; onClicked: root.change(1.2) }
            ToolbarSeparator {}
            DropdownButton { label: "Paper"; value: Reports.paper; options: [{ value: "a4", text: "A4" }, { value: "letter", text: "US Letter" }]; onPicked: (value) => Reports.paper = value }
            end: Row {
                spacing: Theme.space3
                LinkButton { visible: Reports.savedFile !== ""; text: "Open the saved file"; iconName: "link"; onClicked: Reports.openSaved() }
            }
        }
        Divider { Layout.fillWidth: true }
        ErrorBanner { text: Reports.error; dismissable: false; Layout.fillWidth: true; Layout.margins: visible ? Theme.space3 : 0 }
        ErrorBanner { tone: "soon"; text: Reports.remark; dismissable: false; Layout.fillWidth: true; Layout.margins: visible ? Theme.space3 : 0 }

        ListView {
            id: view
            readonly property int page: Math.max(0, indexAt(contentX + contentWidth / 2, contentY + height / 3))
            Layout.fillWidth: true
            Layout.fillHeight: true
            focus: true
            clip: true
            activeFocusOnTab: true
            model: Reports.pageCount
            spacing: Theme.space4
            topMargin: Theme.space4
            bottomMargin: Theme.space4
            contentWidth: Math.max(width, Reports.pageWidth * root.scale + 48)
            flickableDirection: Flickable.AutoFlickIfNeeded
            boundsBehavior: Flickable.StopAtBounds
            cacheBuffer: height
            T.ScrollBar.vertical: AppScrollBar {}
            T.ScrollBar.horizontal: AppScrollBar {}
            Accessible.role: Accessible.Document
            Accessible.name: Reports.title + ", " + Reports.pageCount + " pages"

            function turn(pages) {
                positionViewAtIndex(Math.max(0, Math.min(count - 1, page + pages)), ListView.Beginning);
            }
            function roll(by) {
                contentY = Math.max(originY - topMargin, Math.min(originY + contentHeight - height + bottomMargin, contentY + by));
            }
            Keys.onPressed: (event) => {
                const control = event.modifiers & Qt.ControlModifier;
                let taken = true;
                if (event.key === Qt.Key_PageDown || event.key === Qt.Key_Space) turn(1);
                else if (event.key === Qt.Key_PageUp) turn(-1);
                else if (event.key === Qt.Key_Home) positionViewAtBeginning();
                else if (event.key === Qt.Key_End) positionViewAtEnd();
                else if (event.key === Qt.Key_Down) roll(60);
                else if (event.key === Qt.Key_Up) roll(-60);
                else if (control && (event.key === Qt.Key_Plus || event.key === Qt.Key_Equal)) root.change(1.2);
                else if (control && event.key === Qt.Key_Minus) root.change(1 / 1.2);
                else if (control && event.key === Qt.Key_0) root.zoom = 0;
                else taken = false;
                event.accepted = taken;
            }

            delegate: Item {
                id: sheet
                required property int index
                width: view.contentWidth
                height: Math.round(Reports.pageHeight * root.scale)
                Rectangle {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: Math.round(Reports.pageWidth * root.scale)
                    height: parent.height
                    color: Theme.paper
                    border.width: Theme.hairline
                    border.color: Theme.line
                    BusySpinner { anchors.centerIn: parent; visible: picture.status === Image.Loading; size: 24 }
                    Image {
                        id: picture
                        anchors.fill: parent
                        source: "image://report/" + Reports.number + "/" + sheet.index
                        sourceSize.width: Math.round(width * Screen.devicePixelRatio)
                        asynchronous: true
                        cache: false
                    }
                }
            }
        }
    }

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.space8
        visible: Reports.busy
        width: 380
        height: 64
        radius: Theme.radiusCard
        color: Theme.raised
        border.width: Theme.hairline
        border.color: Theme.controlLine
        RowLayout {
            anchors.fill: parent
            anchors.margins: Theme.space3
            spacing: Theme.space3
            ColumnLayout {
                spacing: 6
                AppText { text: Reports.work; Layout.fillWidth: true }
                ProgressLine { value: Reports.progress; tone: "accent"; Layout.fillWidth: true }
            }
            SecondaryButton { text: "Cancel"; onClicked: Reports.cancel() }
        }
    }

    FileChooser { id: savePdf; title: "Save the report"; saving: true; suggestedName: Reports.fileName("pdf"); nameFilters: ["PDF files (*.pdf)"]; onChosen: (file) => Reports.savePdf(file) }
    FileChooser { id: saveCsv; title: "Save as CSV"; saving: true; suggestedName: Reports.fileName("csv"); nameFilters: ["CSV files (*.csv)"]; onChosen: (file) => Reports.saveCsv(file) }
}
