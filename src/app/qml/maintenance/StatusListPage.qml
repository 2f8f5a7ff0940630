import QtQuick
import Thalvorn

// Tasks by status.
Page {
    title: "Tasks by status"
}
