import QtQuick
import Thalvorn

// A line through a few values, for a trend beside a number.
Canvas {
    id: root

    property var values: []
    property color stroke: Theme.accent
    property string meaning

    implicitWidth: 96
    implicitHeight: 28
    onValuesChanged: requestPaint()
    onStrokeChanged: requestPaint()
    onWidthChanged: requestPaint()
    onHeightChanged: requestPaint()
    Accessible.role: Accessible.Chart
    Accessible.name: meaning

    onPaint: {
        const context = getContext("2d");
        context.clearRect(0, 0, width, height);
        if (values.length < 2)
            return;
        const low = Math.min(...values);
        const span = Math.max(...values) - low || 1;
        context.beginPath();
        values.forEach((value, i) => {
            const x = 2 + i * (width - 4) / (values.length - 1);
            const y = height - 3 - (value - low) / span * (height - 6);
            if (i === 0)
                context.moveTo(x, y);
            else
                context.lineTo(x, y);
        });
        context.lineWidth = 1.6;
        context.lineJoin = "round";
        context.strokeStyle = stroke;
        context.stroke();
    }
}
