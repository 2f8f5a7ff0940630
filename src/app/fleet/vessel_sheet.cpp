#include "app/fleet/vessel_sheet.h"

#include <QFileInfo>
#include <QImageReader>
#include <QQmlEngine>
#include <algorithm>

#include "app/maintenance/task_texts.h"
#include "app/save_outcome.h"
#include "core/particulars.h"
#include "core/vessel_order.h"

namespace thalvorn::app {

namespace {

constexpr std::string_view kPhotoBucket = "vessel_photos";

/// A rule that lets an empty text pass and else asks `parse`.
template <class Value>
RecordFormOf<VesselProfile>::Rule parsed(std::string VesselProfile::* field) {
  return [field](const VesselProfile& profile) {
    if ((profile.*field).empty()) return QString();
    const auto read = Value::parse(profile.*field);
    return read ? QString() : toQt(read.error());
  };
}

QString meterNeeded(double hours, const char* what) {
  return hours > 0 ? QStringLiteral("This meter has run: %1.").arg(QLatin1String(what)) : QString();
}

}  // namespace

VesselForm::VesselForm(Vessel vessel, const Format& format, QObject* parent)
    : RecordFormOf(std::move(vessel), format, parent) {
  addRule("numberOfEngines", [](const Vessel& entered) {
    if (entered.numberOfEngines < 3 && entered.engine3Hours > 0) return meterNeeded(1, "three engines are needed");
    return entered.numberOfEngines < 2 ? meterNeeded(entered.engine2Hours, "two engines are needed") : QString();
  });
}

ProfileForm::ProfileForm(VesselProfile profile, const Format& format, QObject* parent)
    : RecordFormOf(std::move(profile), format, parent) {
  addRule("imoNumber", parsed<ImoNumber>(&VesselProfile::imoNumber));
  addRule("mmsi", parsed<Mmsi>(&VesselProfile::mmsi));
  addRule("timeZone", parsed<TimeZoneName>(&VesselProfile::timeZone));
  addRule("currency", [](const VesselProfile& entered) {
    const bool code = entered.currency.size() == 3 &&
                      std::ranges::all_of(entered.currency, [](char letter) { return letter >= 'A' && letter <= 'Z'; });
    return entered.currency.empty() || code ? QString()
                                            : QStringLiteral("Write the three-letter code, e.g. EUR or USD.");
  });
}

VesselSheet::VesselSheet(AppViewModel& store, const AttachmentStore& attachments, Vessel vessel, VesselProfile profile,
                         bool isNew, const Format& format)
    : store_(store),
      attachments_(attachments),
      vessel_(std::move(vessel), format, this),
      profile_(std::move(profile), format, this),
      isNew_(isNew) {
  QQmlEngine::setObjectOwnership(&vessel_, QQmlEngine::CppOwnership);
  QQmlEngine::setObjectOwnership(&profile_, QQmlEngine::CppOwnership);
  connect(&vessel_, &RecordForm::changed, this, &VesselSheet::changed);
  connect(&profile_, &RecordForm::changed, this, &VesselSheet::changed);
}

QString VesselSheet::photo() const {
  const std::string& path = profile_.record().photoPath;
  if (path.empty()) return {};
  const auto file = attachments_.absolute(path);
  return file ? QUrl::fromLocalFile(toQt(file->string())).toString() : QString();
}

void VesselSheet::setPhoto(const QUrl& picture) {
  const QString file = picture.toLocalFile();
  if (!QImageReader(file).canRead()) {
    fail(QStringLiteral("“%1” is not a picture that can be read.").arg(QFileInfo(file).fileName()));
    return;
  }
  const auto path = attachments_.putFile(kPhotoBucket, std::filesystem::path(file.toStdString()));
  if (!path) {
    fail(toQt(path.error().message));
    return;
  }
  profile_.edit([&](VesselProfile& profile) { profile.photoPath = *path; });
  fail({});
}

void VesselSheet::removePhoto() {
  profile_.edit([](VesselProfile& profile) { profile.photoPath.clear(); });
}

QString VesselSheet::error() const {
  if (marked_ && !(vessel_.valid() && profile_.valid())) {
    return QStringLiteral("Something has to be put right first: see the marked fields.");
  }
  return error_;
}

QString VesselSheet::firstWrong() const {
  const QString field = vessel_.firstWrong();
  return field.isEmpty() ? profile_.firstWrong() : field;
}

void VesselSheet::fail(const QString& error) {
  error_ = error;
  Q_EMIT changed();
}

QString VesselSheet::vesselId() const { return idText(vessel_.record().id); }

bool VesselSheet::save() {
  const bool vesselRight = vessel_.check();
  marked_ = !profile_.check() || !vesselRight;
  fail({});
  if (marked_) return false;
  Edit edit{.label = "“" + vessel_.record().name + (isNew_ ? "” added" : "” changed")};
  VesselProfile profile = profile_.record();
  profile.updatedAt = store_.now();
  if (isNew_) {
    edit.add(vessel_.record());
  } else if (vessel_.dirty()) {
    edit.replace(vessel_.original(), vessel_.record());
  }
  if (const VesselProfile* before = store_.vesselProfiles().find(profile.id)) {
    if (profile_.dirty()) edit.replace(*before, profile);
  } else if (profile_.dirty() || isNew_) {
    edit.add(profile);
  }
  if (!edit.empty()) {
    if (const QString refusal = refusalOf(store_.apply(std::move(edit))); !refusal.isEmpty()) {
      fail(refusal);
      return false;
    }
  }
  if (isNew_) store_.setSelectedVesselID(vessel_.record().id);
  return true;
}

VesselAndProfile newVessel(const AppViewModel& store) {
  VesselAndProfile made;
  made.vessel.id = Uuid::random();
  made.vessel.sortOrder = nextPlace(store.vessels().records());
  made.profile.id = Uuid::random();
  made.profile.vesselID = made.vessel.id;
  return made;
}

VesselAndProfile storedVessel(const AppViewModel& store, const Vessel& vessel) {
  if (const VesselProfile* profile = store.profileOf(vessel.id)) return {vessel, *profile};
  VesselAndProfile made{vessel, {}};
  made.profile.id = Uuid::random();
  made.profile.vesselID = vessel.id;
  return made;
}

}  // namespace thalvorn::app
