import QtQuick
import Thalvorn

// A report as it will look on paper.
Page {
    title: "Report"
}
