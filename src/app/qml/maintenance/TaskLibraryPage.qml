import QtQuick
import Thalvorn

// Task library.
Page {
    title: "Task library"
}
