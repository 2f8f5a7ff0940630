import QtQuick
import QtQuick.Layouts
import Thalvorn

// A member's name, role and access. Nobody changes his own role or the owner's.
FormSheet {
    id: root

    required property string memberId
    readonly property var member: Team.member(memberId)
    readonly property var modules: Team.modules(memberId)
    readonly property bool fixed: member.isOwner === true || member.isSelf === true
    property string role: member.role ?? ""
    property bool active: member.active ?? false
    property var changed: ({})

    title: member.name ?? "Member"
    subtitle: member.email ?? ""
    busy: Team.busy
    error: member.id === undefined ? "This member is not in the team any more." : Team.error
    canSave: member.id !== undefined
    dirty: name.text !== (member.name ?? "") || role !== (member.role ?? "") || active !== (member.active ?? false) || Object.keys(changed).length > 0
    onAboutToShow: Team.clearErrors()
    onClosed: Team.clearErrors()
    onSaveRequested: Team.save(memberId, name.text, role, active, changed)

    Connections {
        target: Team
        function onDone() { root.close(); }
    }
    Component.onCompleted: name.text = member.name ?? ""

    FieldRow {
        TextInputField { id: name; label: "Name"; required: true; message: Team.nameError; enabled: !root.busy; onAccepted: root.save() }
        RoleField {
            label: "Role"
            value: root.role
            readOnly: root.fixed
            enabled: !root.busy
            onPicked: (value) => root.role = value
        }
    }
    AppText {
        visible: root.fixed
        text: root.member.isOwner ? "The owner may do everything, and cannot be shut out." : "Your own role is set by another administrator."
        color: Theme.mute
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    SwitchField {
        visible: !root.fixed
        text: "Active"
        hint: root.member.invited ? "Switched off, the invitation cannot be used." : "Switched off, the person keeps the place in the team but sees nothing."
        checked: root.active
        enabled: !root.busy
        onToggled: root.active = checked
        Layout.fillWidth: true
    }
    ColumnLayout {
        visible: root.member.isOwner !== true
        spacing: Theme.space3
        Layout.fillWidth: true
        AppText { text: "Exceptions to the role"; variant: "strong"; Accessible.role: Accessible.Heading }
        AppText {
            text: "A hidden module disappears for this person; in a read-only one nothing can be changed. An exception never gives more than the role."
            variant: "small"
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        GridLayout {
            columns: root.width >= 620 ? 3 : 2
            columnSpacing: Theme.space3
            rowSpacing: Theme.space3
            Layout.fillWidth: true
            Repeater {
                model: root.modules
                delegate: ComboField {
                    required property var modelData
                    label: modelData.text
                    options: Team.accesses
                    value: root.changed[modelData.key] ?? modelData.access
                    enabled: !root.busy
                    onPicked: (value) => {
                        const changed = Object.assign({}, root.changed);
                        if (value === modelData.access)
                            delete changed[modelData.key];
                        else
                            changed[modelData.key] = value;
                        root.changed = changed;
                    }
                    Layout.fillWidth: true
                }
            }
        }
    }
}
