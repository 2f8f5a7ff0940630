#pragma once

#include <QAbstractListModel>
#include <QTimer>
#include <QUrl>
#include <vector>

#include "app/app_controller.h"
#include "app/fleet/vessel_sheet.h"
#include "app/format.h"
#include "store/app_view_model.h"
#include "store/attachments.h"

namespace thalvorn::app {

/// The vessels in their order, to arrange, add, edit and delete. QML sees it as `VesselList`.
class VesselList : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(int count READ count NOTIFY countChanged)

 public:
  VesselList(AppViewModel& store, const AttachmentStore& attachments, AppController& app, const Format& format,
             QObject* parent = nullptr);

  int count() const { return static_cast<int>(order_.size()); }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;
  Q_INVOKABLE int rowOf(const QVariant& id) const;

  /// Moves a vessel while it is dragged; nothing is saved before `keepOrder`.
  Q_INVOKABLE void moveTo(int from, int to);
  Q_INVOKABLE void keepOrder();
  /// Moves a vessel by places, up (−1) or down (+1), and saves.
  Q_INVOKABLE void shift(const QString& id, int places);

  /// The form of a vessel with her particulars; of a new one when `id` is empty. Owned by the caller; null when gone.
  Q_INVOKABLE QObject* sheet(const QString& id);
  /// What is known of a vessel, for reading: {name, photo, sections: [{title, facts: [{label, value}]}]}.
  Q_INVOKABLE QVariantMap describe(const QString& id) const;
  /// What goes with a vessel when she is deleted: "124 tasks", …
  Q_INVOKABLE QStringList whatHangsOn(const QString& id) const;
  /// True when the typed name is that of the vessel; case and blanks at the ends do not matter.
  Q_INVOKABLE bool isNameOf(const QString& id, const QString& typed) const;
  Q_INVOKABLE void remove(const QString& id);

 Q_SIGNALS:
  void countChanged();
  /// The records changed: what `describe` gave may be another.
  void changed();

 private:
  enum Role {
    idRole = Qt::UserRole,
    nameRole,
    detailRole,
    photoRole,
    registryRole,
    tasksRole,
    servicesRole,
    metersRole
  };

  void read();
  void refreshCounts();
  QString photoOf(const Uuid& vessel) const;

  struct Counts {
    int tasks = 0;
    int services = 0;
  };

  AppViewModel& store_;
  const AttachmentStore& attachments_;
  AppController& app_;
  const Format& format_;
  std::vector<Uuid> order_;
  std::unordered_map<Uuid, Counts> counts_;
  QTimer recount_;
};

}  // namespace thalvorn::app
