import QtQuick
import Thalvorn

// Recurring tasks.
Page {
    title: "Recurring tasks"
}
