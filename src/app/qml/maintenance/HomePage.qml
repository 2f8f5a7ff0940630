import QtQuick
import Thalvorn

// Home.
Page {
    title: "Home"
}
