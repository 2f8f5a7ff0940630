import QtQuick
import Thalvorn

// Vessels.
Page {
    title: "Vessels"
}
