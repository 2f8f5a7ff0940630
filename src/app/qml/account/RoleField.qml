import QtQuick
import QtQuick.Layouts
import Thalvorn

// The role of a member, with what it lets do below it.
ComboField {
    id: root

    options: Team.roles
    hint: Team.roles[index]?.detail ?? "A role of a newer version of this program; it counts as View only here."
    placeholder: value ?? ""
    Layout.fillWidth: true
}
