import QtQuick
import Thalvorn

// Service history.
Page {
    title: "Service history"
}
