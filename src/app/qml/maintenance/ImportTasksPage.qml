import QtQuick
import Thalvorn

// Import tasks from CSV.
Page {
    title: "Import tasks from CSV"
}
