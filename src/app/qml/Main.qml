import QtQuick
import QtQuick.Templates as T
import Thalvorn

// The program's window: menu bar, sidebar, and the page in view. Pages are made on first use and kept.
T.ApplicationWindow {
    id: window

    readonly property bool narrow: width < Theme.collapseBelow
    readonly property alias shownPage: pages.current

    width: 1366
    height: 768
    minimumWidth: 900
    minimumHeight: 560
    title: (pages.current ? pages.current.title + " — " : "") + "Thalvorn Yacht Systems"
    color: Theme.bg
    font: Theme.fonts.body

    LayoutMirroring.enabled: Qt.application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true

    // What is not or cannot be saved would be lost with the window: ask first.
    property bool leaving: false
    onClosing: (close) => {
        if ((Fleet.saveError.length > 0 || sheets.dirty) && !leaving) {
            close.accepted = false;
            quitDialog.made().open();
        }
    }

    menuBar: App.phase === "welcome" ? null : bar

    ShellMenuBar { id: bar; visible: App.phase !== "welcome" }

    Sidebar {
        id: sidebar
        visible: App.phase !== "welcome"
        narrow: window.narrow
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.left: parent.left
    }

    PageStack {
        id: pages
        ready: App.drawn
        visible: App.phase === "ready" || App.phase === "loading"
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.left: sidebar.visible ? sidebar.right : parent.left
        anchors.right: parent.right
        focus: true
    }

    BusyState {
        anchors.fill: pages
        running: App.phase === "loading"
        text: "Reading the fleet…"
    }

    Loader {
        active: App.phase === "welcome"
        anchors.fill: parent
        source: active ? "shell/WelcomePage.qml" : ""
    }

    ErrorBanner {
        anchors.bottom: parent.bottom
        anchors.left: pages.left
        anchors.right: pages.right
        anchors.margins: Theme.space4
        title: "Your changes are not saved yet"
        text: Fleet.saveError
        actionText: "Try again"
        dismissable: false
        onAction: Fleet.retrySaving()
    }

    Column {
        anchors.horizontalCenter: pages.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.space5
        width: pages.width
        spacing: Theme.space2
        z: 10

        Toast {
            id: toast
            visible: text.length > 0
            anchors.horizontalCenter: parent.horizontalCenter
            onDone: text = ""
        }
        UndoBar {
            id: undoBar
            visible: Notices.canUndo
            anchors.horizontalCenter: parent.horizontalCenter
            text: Notices.undoText
            onUndone: Notices.undo()
            onDone: Notices.dismiss()
        }
    }

    // Made when they are first asked for: the window's first picture does not wait for them.
    component OnDemand: Loader {
        active: false
        function made() {
            active = true;
            return item;
        }
    }
    OnDemand { id: search; sourceComponent: SearchPopup {} }
    OnDemand { id: help; sourceComponent: HelpPanel { page: pages.current } }
    OnDemand { id: about; sourceComponent: AboutDialog {} }
    OnDemand { id: shortcuts; sourceComponent: ShortcutsDialog {} }
    SheetHost { id: sheets }
    OnDemand {
        id: quitDialog
        sourceComponent: ConfirmDialog {
            title: "Quit with unsaved changes?"
            text: (sheets.dirty ? "What you entered in the open form has not been saved. " : "")
                  + (Fleet.saveError.length > 0 ? Fleet.saveText + ". " + Fleet.saveError : "")
            confirmText: "Quit and lose them"
            cancelText: "Stay"
            onConfirmed: {
                window.leaving = true;
                window.close();
            }
        }
    }

    OnDemand {
        id: signOutDialog
        sourceComponent: ConfirmDialog {
            title: "Sign out with changes not sent?"
            confirmText: "Sign out"
            danger: false
            onConfirmed: Account.signOut()
        }
    }

    OnDemand {
        id: keptDialog
        sourceComponent: ConfirmDialog {
            property string prefix
            title: "You are no longer in this team"
            confirmText: "Read it now"
            cancelText: "Close"
            danger: false
            onConfirmed: Account.openKeptFleet(prefix)
        }
    }

    // Back to the sign-in, but not over a form that is being filled in.
    QtObject {
        id: expiry
        property bool due: false
        readonly property bool typing: sheets.busy
        onTypingChanged: go()
        function go() {
            if (!due || typing)
                return;
            due = false;
            if (Account.state === "expired")
                Account.showSignIn();
        }
    }
    Connections {
        target: Account
        function onExpired() {
            expiry.due = true;
            expiry.go();
        }
        // What is being entered belongs to the fleet that was in view; it stays as its draft there.
        function onAccountChanged() { sheets.discard(); }
        function onFleetKept(text, prefix) {
            sheets.discard();
            const dialog = keptDialog.made();
            dialog.text = text;
            dialog.prefix = prefix;
            dialog.open();
        }
        function onSignOutQuestion(text) {
            const dialog = signOutDialog.made();
            dialog.text = text;
            dialog.open();
        }
    }

    Connections {
        target: App
        function onSheetRequested(source, properties) { sheets.show(source, properties); }
        function onToastRequested(text, tone) {
            toast.tone = tone;
            toast.text = text;
        }
        function onNotification(name) {
            switch (name) {
            case "openSearch": search.made().open(); break;
            case "openHelp": help.made().showPage(); break;
            case "openStatusHelp": help.made().showStatus(); break;
            case "openShortcuts": shortcuts.made().open(); break;
            case "openAbout": about.made().open(); break;
            case "openHoursEditor": if (Maintenance.hasVessel) App.openSheet("maintenance/HoursSheet.qml"); break;
            case "thalvornPromptChangePassword": App.openSheet("account/ChangePasswordSheet.qml", { compulsory: true }); break;
            case "goBack": App.back(); break;
            case "undoRequested": App.toast(Fleet.undoLast()); break;
            case "appearanceSystem": App.appearance = "system"; break;
            case "appearanceLight": App.appearance = "light"; break;
            case "appearanceDark": App.appearance = "dark"; break;
            case "toggleFullScreen": window.visibility = window.visibility === Window.FullScreen ? Window.Windowed : Window.FullScreen; break;
            case "quitRequested": window.close(); break;
            }
        }
    }

    Connections {
        target: Search
        function onChosen(page, args, notification) {
            if (search.item)
                search.item.close();
            if (notification)
                App.post(notification);
            else
                App.open(page, args);
        }
    }

    // The keys of the menu commands and of the numbered pages; a modal sheet has the keyboard to itself.
    Instantiator {
        model: App.shortcuts
        delegate: Shortcut {
            required property var modelData
            sequences: [modelData.keys]
            enabled: App.phase !== "welcome" && !sheets.busy
            onActivated: App.post(modelData.notification)
        }
    }
    Instantiator {
        model: App.pages.filter((page) => page.shortcut.length > 0)
        delegate: Shortcut {
            required property var modelData
            sequences: [modelData.shortcut]
            enabled: App.phase !== "welcome" && !sheets.busy
            onActivated: App.open(modelData.id)
        }
    }
}
