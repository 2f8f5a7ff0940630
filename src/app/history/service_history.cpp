#include "app/history/service_history.h"

#include <QFile>
#include <QQmlEngine>

#include "app/export_choices.h"
#include "app/history/service_detail.h"
#include "app/maintenance/task_texts.h"
#include "app/save_outcome.h"
#include "core/service_history_csv.h"
#include "reports/pdf_renderer.h"

namespace thalvorn::app {

namespace {

QString detailedKey() { return QStringLiteral("serviceHistory.detailed"); }

}  // namespace

ServiceHistory::ServiceHistory(AppViewModel& store, const AttachmentStore& attachments, PreferenceStore& preferences,
                               AppController& app, const Format& format, QObject* parent)
    : QObject(parent),
      store_(store),
      attachments_(attachments),
      preferences_(preferences),
      app_(app),
      format_(format),
      model_(store, preferences, format),
      detailed_(preferences.preference(detailedKey()) == u"1") {
  QQmlEngine::setObjectOwnership(&model_, QQmlEngine::CppOwnership);
  connect(&model_, &ServiceHistoryModel::refreshed, this, [this] {
    ++revision_;
    Q_EMIT changed();
  });
}

void ServiceHistory::setDetailed(bool detailed) {
  if (detailed == detailed_) return;
  detailed_ = detailed;
  preferences_.setPreference(detailedKey(), QString::number(detailed ? 1 : 0));
  Q_EMIT detailedChanged();
}

QVariantMap ServiceHistory::detail(const QString& id) const {
  const auto read = Uuid::parse(id.toStdString());
  const ServiceLog* log = read ? store_.logs().find(*read) : nullptr;
  return log ? describeService(*log, store_, attachments_, format_, model_.currency()) : QVariantMap();
}

bool ServiceHistory::reveal(const QString& id) {
  const auto read = Uuid::parse(id.toStdString());
  const ServiceLog* log = read ? store_.logs().find(*read) : nullptr;
  if (!log) return false;
  if (store_.selectedVesselID() != log->vesselID) store_.setSelectedVesselID(log->vesselID);
  if (model_.rowOf(id) < 0) model_.clearFilters();
  return true;
}

QObject* ServiceHistory::correction(const QString& id) {
  const auto read = Uuid::parse(id.toStdString());
  const ServiceLog* log = read ? store_.logs().find(*read) : nullptr;
  if (!log) return nullptr;
  auto* form = new ServiceCorrection(store_, *log, format_);
  QQmlEngine::setObjectOwnership(form, QQmlEngine::JavaScriptOwnership);
  return form;
}

void ServiceHistory::remove(const QString& id) {
  const auto read = Uuid::parse(id.toStdString());
  if (!read) return;
  if (const QString refusal = refusalOf(store_.remove<ServiceLog>(*read)); !refusal.isEmpty())
    app_.toast(refusal, QStringLiteral("overdue"));
}

void ServiceHistory::exportCsv(const QUrl& file) {
  const auto logs = model_.shownLogs();
  const std::string text = serviceHistoryCsv(logs, store_.calendar(), csvFormat(preferences_));
  const QString path = withEnding(file.toLocalFile(), QStringLiteral("csv"));
  if (const auto written = writeReportFile(path, QByteArray::fromStdString(text))) {
    app_.toast(QStringLiteral("%1 services saved to %2").arg(format_.number(static_cast<double>(logs.size())), path),
               QStringLiteral("ok"));
  } else {
    app_.toast(written.error().message, QStringLiteral("overdue"));
  }
}

QVariantMap ServiceHistory::readCsv(const QUrl& file) {
  read_.clear();
  const auto fault = [](const QString& text) { return QVariantMap{{QStringLiteral("problem"), text}}; };
  const auto vessel = store_.selectedVesselID();
  if (!vessel) return fault(QStringLiteral("Choose a vessel first: the services are added to it."));
  QFile in(file.toLocalFile());
  if (!in.open(QIODevice::ReadOnly)) return fault(QStringLiteral("Could not read CSV file. ") + in.errorString());
  const std::string text = csvTextFromBytes(in.readAll().toStdString());
  ServiceCsvImport import = serviceLogsFromCsv(text, *vessel, store_.calendar());
  if (import.logs.empty() && import.skipped == 0) {
    return fault(import.problems.empty() ? QStringLiteral("The file holds no services.")
                                         : toQt(import.problems.front().message));
  }
  const std::size_t inFile = import.logs.size();
  read_ = withoutKnown(std::move(import.logs), store_.logs().records(), store_.vessels().records(), *vessel);
  QStringList problems;
  for (const CsvProblem& problem : import.problems)
    problems << QStringLiteral("Line %1: %2").arg(problem.line).arg(toQt(problem.message));
  return {{QStringLiteral("summary"), QStringLiteral("%1 new, %2 already in the history, %3 skipped")
                                          .arg(read_.size())
                                          .arg(inFile - read_.size())
                                          .arg(import.skipped)},
          {QStringLiteral("problems"), problems},
          {QStringLiteral("count"), static_cast<int>(read_.size())}};
}

void ServiceHistory::importServices() {
  const std::size_t count = read_.size();
  if (count == 0) return;
  Edit edit{.label = std::to_string(count) + (count == 1 ? " service imported" : " services imported")};
  for (ServiceLog& log : read_) edit.add(std::move(log));
  read_.clear();
  const QString refusal = refusalOf(store_.apply(std::move(edit)));
  if (!refusal.isEmpty()) app_.toast(refusal, QStringLiteral("overdue"));
}

QString ServiceHistory::exportName() const {
  const Vessel* vessel = store_.selectedVessel();
  return fileNameFor(QStringLiteral("service-history"), vessel ? toQt(vessel->name) : QString(), store_.now(),
                     store_.calendar(), QStringLiteral("csv"));
}

}  // namespace thalvorn::app
