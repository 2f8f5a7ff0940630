#pragma once

#include "app/registers/register_controller_of.h"
#include "compliance/gmdss.h"
#include "compliance/gmdss_register.h"

namespace thalvorn::app {

extern template class RegisterModelOf<GMDSSTestLog>;
extern template class RegisterControllerOf<GMDSSTestLog>;

/// The radio test log of the vessel in view.
class GMDSSController : public RegisterControllerOf<GMDSSTestLog> {
  Q_OBJECT

 public:
  explicit GMDSSController(const RegisterTools& tools, QObject* parent = nullptr);

 protected:
  GMDSSTestLog blank() const override;
  void addRules(RecordFormOf<GMDSSTestLog>& form) const override;
  void describeMore(const GMDSSTestLog& test, QVariantMap& described) const override;
  std::vector<RegisterFigure> figuresShown() const override;
  QVariantList chartsShown() const override;
  std::vector<RegisterPaper> papers() const override;
  DocumentMaker document(const QString& paper, PaperContents<GMDSSTestLog> contents,
                         const ReportSetting& setting) const override;

 private:
  /// By the clock aboard.
  RadioStation station(const Uuid& vesselID) const;
};

}  // namespace thalvorn::app
