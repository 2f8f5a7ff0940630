import QtQuick
import QtQuick.Layouts
import Thalvorn

// The heading of a part of a form.
AppText {
    variant: "strong"
    Layout.fillWidth: true
    Layout.topMargin: Theme.space2
    Accessible.role: Accessible.Heading
}
