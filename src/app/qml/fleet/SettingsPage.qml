import QtQuick
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// How the program looks and behaves, what leaves it, and the care of its file.
Page {
    id: root

    title: "Settings"
    note: Settings.fleetName
    padding: 0
    help: Component {
        AppText {
            text: "Everything is saved as you change it. “Back up…” writes a complete copy while the program is in use, without your session; “Restore…” puts such a copy back and keeps the present file."
            wrapMode: Text.Wrap
        }
    }

    Flickable {
        id: flick
        anchors.fill: parent
        contentWidth: width
        contentHeight: columns.implicitHeight + Theme.pagePadding * 2
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: AppScrollBar {}

        // Keeps the field with the focus in sight.
        readonly property Item focusItem: Window.activeFocusItem
        onFocusItemChanged: {
            for (let p = focusItem; p; p = p.parent) {
                if (p !== columns)
                    continue;
                const top = focusItem.mapToItem(columns, 0, 0).y + Theme.pagePadding;
                if (top - 40 < contentY)
                    contentY = Math.max(0, top - 40);
                else if (top + focusItem.height + 40 > contentY + height)
                    contentY = Math.max(0, Math.min(contentHeight - height, top + focusItem.height + 40 - height));
                return;
            }
        }

        ColumnLayout {
            id: columns
            x: Theme.pagePadding
            y: Theme.pagePadding
            width: Math.min(flick.width - Theme.pagePadding * 2, 1240)
            spacing: Theme.space4

            ErrorBanner { text: Settings.error; dismissable: false; Layout.fillWidth: true }
            ErrorBanner { title: "The store is open for reading only"; tone: "soon"; text: Settings.readOnlyReason; dismissable: false; Layout.fillWidth: true }
            ErrorBanner { title: "Changes are not saved yet"; text: Fleet.saveError; actionText: "Try again"; dismissable: false; onAction: Fleet.retrySaving(); Layout.fillWidth: true }

            GridLayout {
                columns: root.width >= 900 ? 2 : 1
                columnSpacing: Theme.space4
                rowSpacing: Theme.space4
                Layout.fillWidth: true

                ColumnLayout {
                    spacing: Theme.space4
                    Layout.fillWidth: true
                    Layout.preferredWidth: 100
                    Layout.alignment: Qt.AlignTop

                    Card {
                        title: "You and this program"
                        Layout.fillWidth: true
                        TextInputField {
                            label: "Display name"
                            hint: "Signs corrections and completed work, and greets you."
                            text: Settings.displayName
                            onFinished: Settings.displayName = text
                            Layout.fillWidth: true
                        }
                        FieldRow {
                            ComboField {
                                label: "Appearance"
                                options: [{ value: "system", text: "As the desktop" }, { value: "light", text: "Light" }, { value: "dark", text: "Dark" }]
                                value: App.appearance
                                onPicked: (value) => App.appearance = value
                                Layout.fillWidth: true
                            }
                            ComboField {
                                label: "Coordinates"
                                options: [{ value: "decimal", text: "Decimal degrees" }, { value: "dms", text: "Degrees, minutes, seconds" }]
                                value: Settings.coordinateFormat
                                onPicked: (value) => Settings.coordinateFormat = value
                                Layout.fillWidth: true
                            }
                        }
                    }
                    Card {
                        title: "Reminders"
                        Layout.fillWidth: true
                        SwitchField {
                            text: "Remind of due maintenance on the desktop"
                            hint: "For the vessel in view, each due point once; snoozed tasks stay silent."
                            checked: Settings.reminders
                            onToggled: Settings.reminders = checked
                            Layout.fillWidth: true
                        }
                        ComboField {
                            label: "How early"
                            enabled: Settings.reminders
                            options: [{ value: 0, text: "On the day" }, { value: 1, text: "1 day before" }, { value: 2, text: "2 days before" }, { value: 3, text: "3 days before" }, { value: 7, text: "7 days before" }, { value: 14, text: "14 days before" }, { value: 30, text: "30 days before" }]
                            value: Settings.reminderLead
                            onPicked: (value) => Settings.reminderLead = value
                            Layout.fillWidth: true
                        }
                    }
                    Card {
                        title: "Paper and files"
                        Layout.fillWidth: true
                        FieldRow {
                            ComboField {
                                label: "Paper size"
                                options: [{ value: "a4", text: "A4" }, { value: "letter", text: "US Letter" }]
                                value: Settings.paper
                                onPicked: (value) => Settings.paper = value
                                Layout.fillWidth: true
                            }
                            ComboField {
                                label: "CSV separator"
                                hint: "European spreadsheets expect the semicolon, with decimal commas."
                                options: [{ value: "comma", text: "Comma" }, { value: "semicolon", text: "Semicolon" }, { value: "tab", text: "Tab" }]
                                value: Settings.csvSeparator
                                onPicked: (value) => Settings.csvSeparator = value
                                Layout.fillWidth: true
                            }
                        }
                        SwitchField {
                            text: "Open thalvorn:// links with this program"
                            hint: "Only needed where the program was not installed by a package."
                            checked: Settings.links
                            onToggled: Settings.setLinks(checked)
                            Layout.fillWidth: true
                        }
                    }
                }

                ColumnLayout {
                    spacing: Theme.space4
                    Layout.fillWidth: true
                    Layout.preferredWidth: 100
                    Layout.alignment: Qt.AlignTop

                    Card {
                        title: "Data"
                        Layout.fillWidth: true
                        RowLayout {
                            spacing: Theme.space4
                            Layout.fillWidth: true
                            Fact { label: "Fleet"; value: Settings.fleetName }
                            Fact { label: "State"; value: Fleet.saveText }
                            Fact { label: "Size"; value: Settings.storeSize }
                        }
                        RowLayout {
                            spacing: Theme.space2
                            Layout.fillWidth: true
                            ColumnLayout {
                                spacing: 1
                                Layout.fillWidth: true
                                AppText { text: "Where it is"; variant: "small" }
                                AppText { text: Settings.storeFile; elide: Text.ElideMiddle; Layout.fillWidth: true }
                            }
                            IconButton { iconName: "copy"; tip: "Copy the path"; onClicked: { App.copyText(Settings.storeFile); App.toast("The path is on the clipboard.", ""); } }
                        }
                        Flow {
                            spacing: Theme.space2
                            Layout.fillWidth: true
                            SecondaryButton { text: "Back up…"; iconName: "floppy-disk"; enabled: Settings.work === ""; onClicked: backup.open() }
                            SecondaryButton { text: "Restore…"; iconName: "clock-counter-clockwise"; enabled: Settings.work === ""; onClicked: restore.open() }
                            SecondaryButton { text: "Check store"; iconName: "shield-check"; busy: Settings.work !== ""; enabled: Settings.work === ""; onClicked: Settings.checkStore() }
                        }
                        AppText { visible: Settings.work !== ""; text: Settings.work; variant: "small" }
                        ColumnLayout {
                            visible: Settings.checked.sound !== undefined
                            spacing: 3
                            Layout.fillWidth: true
                            RowLayout {
                                spacing: Theme.space2
                                StatusBadge { text: Settings.checked.sound ? "Sound" : "Damaged"; tone: Settings.checked.sound ? "ok" : "overdue" }
                                AppText { text: Settings.checked.sound ? "Everything in the store can be read." : "Write a backup now and restore an earlier one."; variant: "small"; Layout.fillWidth: true }
                            }
                            Repeater {
                                model: Settings.checked.findings ?? []
                                delegate: AppText { required property string modelData; text: modelData; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }
                            }
                        }
                        Divider { Layout.fillWidth: true }
                        Flow {
                            spacing: Theme.space2
                            Layout.fillWidth: true
                            SecondaryButton { text: "Change fleet or sign out"; iconName: "sign-in"; onClicked: App.post("signOutRequested") }
                            SecondaryButton { visible: Settings.demo; text: "Reset the demo fleet…"; iconName: "repeat"; enabled: Settings.work === ""; onClicked: resetDemo.open() }
                        }
                    }
                    Card {
                        title: "Sidebar"
                        note: "· hidden modules stay in menus and search"
                        Layout.fillWidth: true
                        Repeater {
                            model: Settings.modules
                            delegate: SwitchField {
                                required property var modelData
                                text: modelData.title
                                checked: modelData.shown
                                implicitHeight: 30
                                onToggled: App.setModuleHidden(modelData.id, !checked)
                                Layout.fillWidth: true
                            }
                        }
                    }
                    Card {
                        title: "About"
                        Layout.fillWidth: true
                        RowLayout {
                            Fact { label: "Version"; value: App.version }
                            Fact { label: "Administration"; value: "No admin tools available" }
                        }
                    }
                }
            }
        }
    }

    FileChooser { id: backup; title: "Back up the store"; saving: true; suggestedName: Settings.backupName(); nameFilters: ["Stores (*.sqlite)"]; onChosen: (file) => Settings.backUp(file) }
    FileChooser {
        id: restore
        title: "Restore a backup"
        nameFilters: ["Stores (*.sqlite)", "All files (*)"]
        onChosen: (file) => {
            confirmRestore.file = file;
            confirmRestore.ask("Restore this backup?", Settings.restoreWarning(file), "Restore");
        }
    }
    ConfirmDialog { id: confirmRestore; property url file; onConfirmed: Settings.restore(file) }
    ConfirmDialog {
        id: resetDemo
        title: "Reset the demo fleet?"
        text: "What you changed in the demo fleet is replaced by fresh sample data. Your own fleets are not touched."
        confirmText: "Reset"
        onConfirmed: Settings.resetDemo()
    }
}
