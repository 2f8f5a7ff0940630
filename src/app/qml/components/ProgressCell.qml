import QtQuick
import Thalvorn

// An interval used, in a table.
TableCell {
    property alias value: line.value
    property alias tone: line.tone

    ProgressLine {
        id: line
        width: parent.width
        anchors.verticalCenter: parent.verticalCenter
    }
}
