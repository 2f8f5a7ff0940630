#pragma once

#include <QObject>
#include <QUrl>

#include "app/format.h"
#include "app/record_form.h"
#include "core/vessel.h"
#include "core/vessel_profile.h"
#include "store/app_view_model.h"
#include "store/attachments.h"

namespace thalvorn::app {

class VesselForm : public RecordFormOf<Vessel> {
  Q_OBJECT

 public:
  VesselForm(Vessel vessel, const Format& format, QObject* parent);
};

class ProfileForm : public RecordFormOf<VesselProfile> {
  Q_OBJECT

 public:
  ProfileForm(VesselProfile profile, const Format& format, QObject* parent);
};

/// A vessel and her particulars in one sheet; both are saved in one edit.
class VesselSheet : public QObject {
  Q_OBJECT
  Q_PROPERTY(QObject* vessel READ vessel CONSTANT)
  Q_PROPERTY(QObject* profile READ profile CONSTANT)
  Q_PROPERTY(bool isNew READ isNew CONSTANT)
  Q_PROPERTY(bool dirty READ dirty NOTIFY changed)
  Q_PROPERTY(QString photo READ photo NOTIFY changed)
  Q_PROPERTY(QString error READ error NOTIFY changed)

 public:
  VesselSheet(AppViewModel& store, const AttachmentStore& attachments, Vessel vessel, VesselProfile profile, bool isNew,
              const Format& format);

  QObject* vessel() { return &vessel_; }
  QObject* profile() { return &profile_; }
  bool isNew() const { return isNew_; }
  bool dirty() const { return vessel_.dirty() || profile_.dirty(); }
  /// The address of the photo; empty without one.
  QString photo() const;
  /// Why the last saving failed; empty once what was wrong has been put right.
  QString error() const;
  /// The first field that has to be put right, of the vessel or else of her profile.
  Q_INVOKABLE QString firstWrong() const;

  Q_INVOKABLE void setPhoto(const QUrl& picture);
  Q_INVOKABLE void removePhoto();
  /// Saves both; false when a field has to be put right first or the store refuses.
  Q_INVOKABLE bool save();
  /// The vessel's identity, also of a new one once it is saved.
  Q_INVOKABLE QString vesselId() const;

 Q_SIGNALS:
  void changed();

 private:
  void fail(const QString& error);

  AppViewModel& store_;
  const AttachmentStore& attachments_;
  VesselForm vessel_;
  ProfileForm profile_;
  bool isNew_;
  bool marked_ = false;  ///< the last saving stopped at marked fields
  QString error_;
};

/// The stored vessel with her profile (an empty one when she has none yet), or a new vessel at the end of the list.
struct VesselAndProfile {
  Vessel vessel;
  VesselProfile profile;
};
VesselAndProfile newVessel(const AppViewModel& store);
VesselAndProfile storedVessel(const AppViewModel& store, const Vessel& vessel);

}  // namespace thalvorn::app
