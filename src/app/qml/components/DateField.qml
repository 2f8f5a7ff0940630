import QtQuick
import QtQuick.Controls.Basic as Basic
import QtQuick.Layouts
import QtQuick.Templates as T
import Thalvorn

// A day, with a time of day when `withTime`. Typed freely ("21 Nov 2026", "2026-11-21", "tomorrow", "+14") or picked from
// the calendar; arrow keys move it by a day. `date` is undefined while empty; `picked` reports what was entered.
TextInputField {
    id: root

    property var date
    property bool withTime: false
    property bool optional: false
    property bool unreadable: false
    readonly property string shownDate: date ? (withTime ? Format.dateTime(date) : Format.date(date)) : ""
    property string fault  // what the owner says of the day; a text that is no date is told by the field itself
    signal picked(var date)

    placeholder: withTime ? "Day and time" : "Day"
    trailingIcon: "calendar-blank"
    trailingTip: "Choose from the calendar"
    message: !unreadable ? fault : text.trim().length === 0 ? "A date is needed here." : "This is not a date. Try “21 Nov 2026”, “tomorrow” or “+14”."
    text: shownDate
    onShownDateChanged: if (!input.activeFocus || !unreadable) { unreadable = false; replaceText(shownDate); }

    function commit() {
        const typed = text.trim();
        if (typed === shownDate)
            return;
        if (typed.length === 0) {
            unreadable = !optional;
            if (optional)
                picked(undefined);
            return;
        }
        const read = Format.parseDate(typed, date ?? undefined, withTime);
        unreadable = read === undefined;
        if (read !== undefined) {
            picked(read);
            Qt.callLater(() => { if (!root.unreadable) root.replaceText(root.shownDate); });
        }
    }
    function move(days) {
        picked(Format.addDays(date ?? Format.now(), days));
    }

    onFinished: commit()
    input.Keys.onUpPressed: move(1)
    input.Keys.onDownPressed: (event) => { if (event.modifiers & Qt.AltModifier) calendar.show(); else move(-1); }
    onTrailingClicked: calendar.show()

    T.Popup {
        id: calendar

        property date month: new Date()

        function show() {
            month = root.date ?? Format.now();
            open();
        }
        function turn(months) {
            month = new Date(month.getFullYear(), month.getMonth() + months, 1);
        }

        parent: root.input
        x: root.input.width - width
        y: root.input.height + Theme.space1
        width: 284
        implicitHeight: contentItem.implicitHeight + padding * 2
        padding: Theme.space3
        margins: Theme.space2
        focus: true

        background: Item {
            SheetShadow { anchors.fill: parent; radius: Theme.radiusCard }
            Rectangle {
                anchors.fill: parent
                radius: Theme.radiusCard
                color: Theme.raised
                border.width: Theme.hairline
                border.color: Theme.controlLine
            }
        }

        contentItem: ColumnLayout {
            spacing: Theme.space1
            RowLayout {
                IconButton { iconName: "caret-left"; tip: "Previous month"; onClicked: calendar.turn(-1) }
                AppText {
                    text: Format.month(calendar.month)
                    variant: "strong"
                    horizontalAlignment: Text.AlignHCenter
                    Layout.fillWidth: true
                }
                IconButton { iconName: "caret-right"; tip: "Next month"; onClicked: calendar.turn(1) }
            }
            Basic.DayOfWeekRow {
                Layout.fillWidth: true
                padding: 0
                spacing: 0
                delegate: Text {
                    required property var model
                    text: model.narrowName
                    font: Theme.fonts.small
                    color: Theme.mute
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                }
            }
            Basic.MonthGrid {
                id: grid
                Layout.fillWidth: true
                Layout.preferredHeight: 6 * 34
                padding: 0
                spacing: 0
                month: calendar.month.getMonth()
                year: calendar.month.getFullYear()
                onClicked: (day) => {
                    const time = root.date ?? Format.now();
                    root.unreadable = false;
                    root.picked(new Date(day.getUTCFullYear(), day.getUTCMonth(), day.getUTCDate(), time.getHours(), time.getMinutes()));
                    root.replaceText(root.shownDate);
                    calendar.close();
                }
                delegate: Rectangle {
                    required property var model
                    readonly property bool chosen: root.date !== undefined && root.date !== null && root.date.getFullYear() === model.year
                                                   && root.date.getMonth() === model.month && root.date.getDate() === model.day
                    radius: Theme.radiusControl
                    color: chosen ? Theme.accentFill : dayHover.hovered ? Theme.hover : "transparent"
                    border.width: model.today && !chosen ? 1 : 0
                    border.color: Theme.accent
                    Accessible.role: Accessible.Button
                    Accessible.name: Format.date(new Date(model.year, model.month, model.day))
                    HoverHandler { id: dayHover }
                    Text {
                        anchors.centerIn: parent
                        text: parent.model.day
                        font: Theme.fonts.small
                        color: parent.chosen ? Theme.accentInk : parent.model.month === grid.month ? Theme.ink : Theme.faint
                    }
                }
            }
            RowLayout {
                LinkButton {
                    text: "Today"
                    onClicked: { root.unreadable = false; root.picked(Format.now()); root.replaceText(root.shownDate); calendar.close(); }
                }
                Item { Layout.fillWidth: true }
                LinkButton {
                    visible: root.optional
                    text: "Clear"
                    onClicked: { root.unreadable = false; root.picked(undefined); root.replaceText(""); calendar.close(); }
                }
            }
        }
    }
}
