pragma Singleton

import QtQuick
import Thalvorn

// Every colour, size, font and duration of the program. Nothing else names one.
QtObject {
    id: theme

    readonly property bool dark: App.dark

    // Surfaces
    readonly property color bg: dark ? "#0C1520" : "#F4F6F8"
    readonly property color card: dark ? "#13202E" : "#FFFFFF"
    readonly property color raised: dark ? "#182838" : "#FFFFFF"
    readonly property color line: dark ? "#223447" : "#E1E6EC"
    readonly property color controlLine: dark ? "#2B4058" : "#D3DAE2"
    readonly property color hover: dark ? "#1A2B3D" : "#EEF2F6"
    readonly property color pressed: dark ? "#213549" : "#E2E8EE"
    readonly property color sectionBg: dark ? "#0E1823" : "#F4F6F8"
    readonly property color track: dark ? "#1D2E40" : "#E9EDF2"
    readonly property color scrim: dark ? "#A6040A10" : "#66142231"
    readonly property color shadow: dark ? "#80000000" : "#33142231"

    // Printed pages look the same in both schemes.
    readonly property color paper: "#FFFFFF"
    readonly property color tipBg: dark ? "#2B4058" : "#142231"
    readonly property color tipInk: "#FFFFFF"
    readonly property color tipHover: dark ? "#3A526D" : "#2A3B4C"

    // Text
    readonly property color ink: dark ? "#E4EBF2" : "#142231"
    readonly property color mute: dark ? "#9DAEBF" : "#5D6B7A"
    readonly property color faint: dark ? "#6F8296" : "#8A97A5"

    // Actions
    readonly property color accent: dark ? "#5BB0F0" : "#0F6CBD"
    readonly property color accentBg: dark ? "#12324C" : "#E5F0FA"
    readonly property color accentFill: dark ? "#1F78C4" : "#0F6CBD"
    readonly property color accentFillHover: dark ? "#2A84D0" : "#0D5FA7"
    readonly property color accentFillPressed: dark ? "#1A6AAE" : "#0B5291"
    readonly property color accentInk: "#FFFFFF"
    readonly property color barFaint: dark ? "#2C5F8A" : "#7BABD9"

    // Status
    readonly property color overdue: dark ? "#FF8A80" : "#C4302B"
    readonly property color overdueBg: dark ? "#3A1C1F" : "#FCEBEA"
    readonly property color soon: dark ? "#FFC069" : "#A15C00"
    readonly property color soonBg: dark ? "#38290F" : "#FDF1DC"
    readonly property color ok: dark ? "#6FD8A2" : "#1A7A4C"
    readonly property color okBg: dark ? "#123323" : "#E4F4EC"
    readonly property color neutral: dark ? "#9DAEBF" : "#5D6B7A"
    readonly property color neutralBg: dark ? "#1D2E40" : "#EEF2F6"
    readonly property color dangerFill: dark ? "#B83A35" : "#C4302B"
    readonly property color dangerFillHover: dark ? "#C6443F" : "#A92823"

    // Sidebar and menu bar, the same in both schemes
    readonly property color side: dark ? "#08111A" : "#0D1C2D"
    readonly property color sideRaised: dark ? "#101F30" : "#172A40"
    readonly property color sideHover: dark ? "#0E1A28" : "#132539"
    readonly property color sideInk: "#C9D5E1"
    readonly property color sideStrong: "#FFFFFF"
    readonly property color sideMute: "#8DA0B4"
    readonly property color sideLine: "#1E3145"
    readonly property color sideAccent: "#5BB0F0"
    readonly property color sideAlert: "#8C2F2F"
    readonly property color sideAlertInk: "#FFE3E0"
    readonly property color sideSoon: "#5E4310"
    readonly property color sideSoonInk: "#FFDFA8"

    // The colours of a status word: overdue, soon, ok; anything else is neutral.
    function statusInk(tone) {
        return tone === "overdue" ? overdue : tone === "soon" ? soon : tone === "ok" ? ok : tone === "accent" ? accent : neutral;
    }
    function statusBg(tone) {
        return tone === "overdue" ? overdueBg : tone === "soon" ? soonBg : tone === "ok" ? okBg : tone === "accent" ? accentBg : neutralBg;
    }

    // Type. Sizes in logical pixels; the half pixel of secondary text needs a point size (9.375 pt are 12.5 px).
    readonly property string family: "Inter"
    readonly property var fonts: ({
        "body": Qt.font({ family: family, pixelSize: 14, weight: Font.Normal }),
        "medium": Qt.font({ family: family, pixelSize: 14, weight: Font.Medium }),
        "strong": Qt.font({ family: family, pixelSize: 14, weight: Font.DemiBold }),
        "small": Qt.font({ family: family, pointSize: 9.375, weight: Font.Normal }),
        "struck": Qt.font({ family: family, pointSize: 9.375, weight: Font.Normal, strikeout: true }),
        "smallMedium": Qt.font({ family: family, pointSize: 9.375, weight: Font.Medium }),
        "smallStrong": Qt.font({ family: family, pointSize: 9.375, weight: Font.DemiBold }),
        "badge": Qt.font({ family: family, pixelSize: 12, weight: Font.DemiBold }),
        "tiny": Qt.font({ family: family, pixelSize: 11, weight: Font.Normal }),
        "caps": Qt.font({ family: family, pixelSize: 11, weight: Font.Medium, letterSpacing: 0.7 }),
        "subtitle": Qt.font({ family: family, pixelSize: 16, weight: Font.DemiBold }),
        "title": Qt.font({ family: family, pixelSize: 18, weight: Font.DemiBold }),
        "headline": Qt.font({ family: family, pixelSize: 34, weight: Font.DemiBold }),
        "mono": Qt.font({ family: "monospace", pixelSize: 13 })
    })
    readonly property var lineHeights: ({
        "body": 20, "medium": 20, "strong": 20, "small": 17, "struck": 17, "smallMedium": 17, "smallStrong": 17, "badge": 16,
        "tiny": 15, "caps": 15, "subtitle": 22, "title": 24, "headline": 40, "mono": 19
    })

    // Space and form
    readonly property int space1: 4
    readonly property int space2: 8
    readonly property int space3: 12
    readonly property int space4: 16
    readonly property int space5: 20
    readonly property int space6: 24
    readonly property int space8: 32
    readonly property int hairline: 1
    readonly property int radiusSmall: 6
    readonly property int radiusControl: 8
    readonly property int radiusCard: 12
    readonly property int radiusSheet: 14
    readonly property int controlHeight: 36
    readonly property int chipHeight: 30
    readonly property int rowHeight: 54
    readonly property int rowHeightCompact: 42
    readonly property int sectionHeight: 32
    readonly property int iconSize: 18
    readonly property int iconSmall: 16
    readonly property int headHeight: 56
    readonly property int sideWidth: 232
    readonly property int sideWidthNarrow: 60
    readonly property int menuBarHeight: 30
    readonly property int collapseBelow: 1100
    readonly property int detailFrom: 1200
    readonly property int detailWidth: 340
    readonly property int sheetMin: 640
    readonly property int sheetMax: 860
    readonly property int sheetPadding: 20
    readonly property int pagePadding: 24

    // Motion, none where the desktop asks for none
    readonly property int fast: App.reducedMotion ? 0 : 120
    readonly property int calm: App.reducedMotion ? 0 : 180
    readonly property int tipDelay: 600
    readonly property int busyDelay: 300
    readonly property int undoTime: 10000
    readonly property int toastTime: 4000
}
