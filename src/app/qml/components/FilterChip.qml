import QtQuick
import Thalvorn

// A chip that toggles a filter.
Chip {
    checkable: true
}
