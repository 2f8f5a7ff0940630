import QtQuick
import Thalvorn

// A hairline across.
Rectangle {
    implicitHeight: Theme.hairline
    implicitWidth: 100
    color: Theme.line
}
