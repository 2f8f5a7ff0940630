import QtQuick
import QtQuick.Layouts
import Thalvorn

// A vessel and her particulars: what the papers print, in sections.
FormSheet {
    id: root

    property string vesselId
    readonly property var sheet: VesselList.sheet(vesselId)
    readonly property var vessel: sheet ? sheet.vessel : null
    readonly property var profile: sheet ? sheet.profile : null
    readonly property bool generators: vessel && vessel.revision >= 0 ? vessel.value("hasGenerator") === true : false
    readonly property bool hydraulics: vessel && vessel.revision >= 0 ? vessel.value("hasHydraulic") === true : false
    readonly property int engines: vessel && vessel.revision >= 0 ? vessel.value("numberOfEngines") : 1
    readonly property bool twoGenerators: generators && vessel.value("numberOfGenerators") > 1

    title: sheet && sheet.isNew ? "Add vessel" : "Edit vessel"
    subtitle: sheet === null ? "This vessel was deleted meanwhile." : vessel.revision >= 0 ? vessel.text("name") : ""
    actionText: sheet && sheet.isNew ? "Add vessel" : "Save"
    canSave: sheet !== null
    dirty: sheet !== null && sheet.dirty
    error: sheet ? sheet.error : ""
    sheetWidth: 860
    onSaveRequested: {
        if (sheet.save())
            close();
        else
            focusField(sheet.firstWrong());
    }

    component Section: AppText {
        variant: "strong"
        Layout.fillWidth: true
        Layout.topMargin: Theme.space2
        Accessible.role: Accessible.Heading
    }

    RowLayout {
        spacing: Theme.space4
        Layout.fillWidth: true
        ColumnLayout {
            spacing: Theme.space3
            Layout.fillWidth: true
            FieldRow {
                Field { form: root.vessel; name: "name" }
                Field { form: root.vessel; name: "type" }
            }
            FieldRow {
                Field { form: root.vessel; name: "lengthFeet" }
                Field { form: root.vessel; name: "numberOfEngines" }
            }
        }
        ColumnLayout {
            spacing: Theme.space1
            Layout.fillWidth: false
            Layout.alignment: Qt.AlignTop
            VesselPhoto { source: root.sheet ? root.sheet.photo : ""; implicitWidth: 176; implicitHeight: 108 }
            RowLayout {
                LinkButton { text: root.sheet && root.sheet.photo ? "Change photo…" : "Add photo…"; onClicked: picture.open() }
                Item { Layout.fillWidth: true }
                LinkButton { visible: root.sheet !== null && root.sheet.photo !== ""; text: "Remove"; onClicked: root.sheet.removePhoto() }
            }
        }
    }

    Section { text: "Machinery and meters" }
    RowLayout {
        spacing: Theme.space6
        Field { form: root.vessel; name: "hasGenerator"; Layout.fillWidth: false; Layout.preferredWidth: 180 }
        Field { form: root.vessel; name: "hasHydraulic"; Layout.fillWidth: false; Layout.preferredWidth: 200 }
        Field { form: root.vessel; name: "useISM"; Layout.fillWidth: false; Layout.preferredWidth: 220 }
    }
    FieldRow {
        visible: root.generators
        Field { form: root.vessel; name: "numberOfGenerators" }
        Field { form: root.profile; name: "engineMake"; label: "Engine make and model" }
        Field { form: root.profile; name: "generatorMake"; label: "Generator make and model" }
    }
    FieldRow {
        visible: !root.generators
        Field { form: root.profile; name: "engineMake"; label: "Engine make and model" }
    }
    FieldRow {
        visible: root.sheet !== null && root.sheet.isNew
        Field { form: root.vessel; name: "engineHours" }
        Field { form: root.vessel; name: "engine2Hours"; visible: root.engines > 1 }
        Field { form: root.vessel; name: "engine3Hours"; visible: root.engines > 2 }
        Field { form: root.vessel; name: "generator1Hours"; visible: root.generators }
        Field { form: root.vessel; name: "generator2Hours"; visible: root.twoGenerators }
        Field { form: root.vessel; name: "hydraulicHours"; visible: root.hydraulics }
    }
    AppText { visible: root.sheet !== null && !root.sheet.isNew; text: "Meters are raised under Update Hour Meters…, where mistyped readings are put right too."; variant: "small"; wrapMode: Text.Wrap; Layout.fillWidth: true }

    Section { text: "Registry" }
    FieldRow {
        Field { form: root.profile; name: "flag" }
        Field { form: root.profile; name: "portOfRegistry" }
        Field { form: root.profile; name: "officialNumber" }
    }
    FieldRow {
        Field { form: root.profile; name: "imoNumber" }
        Field { form: root.profile; name: "callSign" }
        Field { form: root.profile; name: "mmsi" }
    }
    FieldRow {
        Field { form: root.profile; name: "classSociety" }
        Field { form: root.profile; name: "hullNumber" }
        Field { form: root.profile; name: "formerNames" }
    }

    Section { text: "Dimensions and build" }
    FieldRow {
        Field { form: root.profile; name: "grossTonnage" }
        Field { form: root.profile; name: "netTonnage" }
        Field { form: root.profile; name: "beamFeet" }
        Field { form: root.profile; name: "draftFeet" }
        Field { form: root.profile; name: "airDraftFeet" }
    }
    FieldRow {
        Field { form: root.profile; name: "builder" }
        Field { form: root.profile; name: "yearBuilt" }
        Field { form: root.profile; name: "hullMaterial" }
    }
    FieldRow {
        Field { form: root.profile; name: "fuelCapacityGallons" }
        Field { form: root.profile; name: "waterCapacityGallons" }
        Field { form: root.profile; name: "cruisingSpeedKnots" }
    }

    Section { text: "People and limits" }
    FieldRow {
        Field { form: root.profile; name: "owner" }
        Field { form: root.profile; name: "manager" }
        Field { form: root.profile; name: "managerPhone" }
    }
    FieldRow {
        Field { form: root.profile; name: "designatedPerson" }
        Field { form: root.profile; name: "maxGuests" }
        Field { form: root.profile; name: "safeManning" }
    }

    Section { text: "Aboard" }
    FieldRow {
        Field { form: root.profile; name: "homePort" }
        Field { form: root.profile; name: "timeZone" }
        Field { form: root.profile; name: "currency" }
    }
    Field { form: root.vessel; name: "notes"; rows: 3 }

    FileChooser {
        id: picture
        title: "Choose a photo"
        nameFilters: ["Pictures (*.jpg *.jpeg *.png *.webp)", "All files (*)"]
        onChosen: (file) => root.sheet.setPhoto(file)
    }
}
