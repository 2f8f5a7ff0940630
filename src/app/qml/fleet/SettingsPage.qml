import QtQuick
import Thalvorn

// Settings.
Page {
    title: "Settings"
}
