import QtQuick
import Thalvorn

// A bundled icon in the colour of text. `name` is a drawing's name or a stored symbol name.
IconShape {
    property real size: Theme.iconSize

    implicitWidth: size
    implicitHeight: size
    color: Theme.ink
    Accessible.ignored: true
}
