#pragma once

#include "app/registers/register_controller_of.h"
#include "operations/ships_log_register.h"

namespace thalvorn::app {

extern template class RegisterModelOf<ShipsLogEntry>;
extern template class RegisterControllerOf<ShipsLogEntry>;

/// The ship's log: of the vessel in view, or of the whole fleet to search in.
class ShipsLogController : public RegisterControllerOf<ShipsLogEntry> {
  Q_OBJECT
  Q_PROPERTY(QVariantList journalCategories READ journalCategories CONSTANT)

 public:
  ShipsLogController(const RegisterTools& tools, RegisterScope scope, QObject* parent = nullptr);

  QVariantList journalCategories() const;
  /// Adds a line with the present time to an entry's trip journal; false when the entry is gone or it is refused.
  Q_INVOKABLE bool addJournalLine(const QString& id, const QString& category, const QString& author,
                                  const QString& text);
  Q_INVOKABLE void removeJournalLine(const QString& id, const QString& lineId);

  bool imports() const override { return model()->scope() == RegisterScope::selectedVessel; }

 protected:
  ShipsLogEntry blank() const override;
  void describeMore(const ShipsLogEntry& entry, QVariantMap& described) const override;
  std::vector<RegisterFigure> figuresShown() const override;
  QVariantList chartsShown() const override;
  std::vector<RegisterPaper> papers() const override;
  DocumentMaker document(const QString& paper, PaperContents<ShipsLogEntry> contents,
                         const ReportSetting& setting) const override;
  std::string spreadsheet(const std::vector<ShipsLogEntry>& records, const ReportSetting& setting,
                          const CsvFormat& format) const override;

 private:
  bool replaceEntry(const ShipsLogEntry& before, ShipsLogEntry after, std::string label);
};

}  // namespace thalvorn::app
