import QtQuick
import Thalvorn

// A menu from a list of options: [{value, text, icon?, danger?, enabled?, separator?}].
AppMenu {
    id: menu

    property var options: []
    property var value
    signal picked(var value)

    function openBelow(item) {
        popup(item, 0, item.height + Theme.space1);
    }

    Instantiator {
        model: menu.options
        delegate: AppMenuItem {
            required property var modelData
            text: modelData.text ?? ""
            iconName: modelData.icon ?? ""
            danger: modelData.danger ?? false
            separator: modelData.separator ?? false
            enabled: !separator && (modelData.enabled ?? true)
            checkable: menu?.value !== undefined && !separator
            checked: checkable && modelData.value === menu?.value
            onTriggered: menu.picked(modelData.value)
        }
        onObjectAdded: (index, object) => menu.insertItem(index, object)
        onObjectRemoved: (index, object) => menu.removeItem(object)
    }
}
