import QtQuick
import Thalvorn

// Template library.
Page {
    title: "Template library"
}
