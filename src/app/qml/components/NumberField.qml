import QtQuick
import Thalvorn

// A number as text, read by the rules of the user's locale; arrows step it. `number` is NaN while it cannot be read.
TextInputField {
    id: root

    property int decimals: 0
    property real step: 1
    property real from: -Infinity
    property real to: Infinity
    readonly property real number: Format.parseNumber(text)

    inputMethodHints: Qt.ImhFormattedNumbersOnly

    function change(steps) {
        const base = isNaN(number) ? 0 : number;
        replaceText(Format.number(Math.min(to, Math.max(from, base + steps * step)), decimals));
        edited(text);
    }

    input.Keys.onUpPressed: change(1)
    input.Keys.onDownPressed: change(-1)
    input.Keys.onPressed: (event) => {
        if (event.key === Qt.Key_PageUp || event.key === Qt.Key_PageDown) {
            change(event.key === Qt.Key_PageUp ? 10 : -10);
            event.accepted = true;
        }
    }
}
