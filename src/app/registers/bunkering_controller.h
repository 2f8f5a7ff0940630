#pragma once

#include "app/registers/register_controller_of.h"
#include "operations/bunkering_register.h"

namespace thalvorn::app {

extern template class RegisterModelOf<BunkeringRecord>;
extern template class RegisterControllerOf<BunkeringRecord>;

/// The fuel bunkering log of the vessel in view.
class BunkeringController : public RegisterControllerOf<BunkeringRecord> {
  Q_OBJECT

 public:
  explicit BunkeringController(const RegisterTools& tools, QObject* parent = nullptr);

  /// [{value, text}] of the ISO 4217 codes that the form offers, with the record's own when it is another.
  Q_INVOKABLE QVariantList currencies(QObject* sheet) const;
  /// Quantity × price per gallon of what the form holds, in its currency; empty while either is missing.
  Q_INVOKABLE QString calculatedTotal(QObject* sheet) const;
  /// The quantity in litres, where the user reads metric units.
  Q_INVOKABLE QString inLitres(QObject* sheet) const;

 protected:
  BunkeringRecord blank() const override;
  void addRules(RecordFormOf<BunkeringRecord>& form) const override;
  std::vector<RegisterFigure> figuresShown() const override;
  QVariantList chartsShown() const override;
  std::vector<RegisterPaper> papers() const override;
  DocumentMaker document(const QString& paper, PaperContents<BunkeringRecord> contents,
                         const ReportSetting& setting) const override;
  std::string spreadsheet(const std::vector<BunkeringRecord>& records, const ReportSetting& setting,
                          const CsvFormat& format) const override;
  QString csvName() const override;
};

}  // namespace thalvorn::app
