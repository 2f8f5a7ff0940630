import QtQuick
import Thalvorn

// Maintenance.
Page {
    title: "Maintenance"
}
