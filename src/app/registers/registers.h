#pragma once

#include <QObject>
#include <QVariant>
#include <memory>
#include <vector>

#include "app/registers/register_controller.h"

namespace thalvorn::app {

/// All registers by their keys, and the people that forms pick from. QML sees it as `Registers`.
class Registers : public QObject {
  Q_OBJECT
  Q_PROPERTY(QVariantList crew READ crew NOTIFY peopleChanged)
  Q_PROPERTY(QVariantList guests READ guests NOTIFY peopleChanged)
  Q_PROPERTY(QVariantList equipment READ equipment NOTIFY peopleChanged)
  Q_PROPERTY(QString userName READ userName NOTIFY peopleChanged)

 public:
  explicit Registers(const RegisterTools& tools);

  /// The register with this key; null when there is none.
  Q_INVOKABLE QObject* of(const QString& key) const;

  /// Of the vessel in view: [{name, detail}], as PersonField takes them; people also as they were written before.
  QVariantList crew() const;
  QVariantList guests() const;
  QVariantList equipment() const;
  /// Who signs what is written now.
  QString userName() const;

 Q_SIGNALS:
  void peopleChanged();

 private:
  std::vector<const ShipsLogEntry*> latestEntries() const;

  RegisterTools tools_;
  std::vector<std::unique_ptr<RegisterController>> registers_;
};

}  // namespace thalvorn::app
