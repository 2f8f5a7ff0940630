#include "app/preview/report_desk.h"

#include <QDesktopServices>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <unordered_map>

#include "app/export_choices.h"
#include "app/maintenance/task_texts.h"
#include "core/service_history_csv.h"
#include "core/service_history_report.h"
#include "core/work_list_report.h"

namespace thalvorn::app {

namespace {

QString workListName() { return QStringLiteral("workList"); }
QString historyName(bool detailed) {
  return detailed ? QStringLiteral("serviceHistoryDetailed") : QStringLiteral("serviceHistory");
}

/// Copies for the worker thread: the records may change while it reads.
template <class T>
std::vector<T> ofVessel(std::span<const T> records, const Uuid& vessel) {
  std::vector<T> own;
  for (const T& record : records)
    if (record.vesselID == vessel) own.push_back(record);
  return own;
}

}  // namespace

ReportDesk::ReportDesk(AppViewModel& store, const AttachmentStore& attachments, const ServiceHistoryModel& history,
                       PreferenceStore& preferences, AppController& app, const Format& format, QObject* parent)
    : QObject(parent),
      store_(store),
      attachments_(attachments),
      history_(history),
      preferences_(preferences),
      app_(app),
      format_(format) {
  connect(&renderer_, &ReportRenderer::progressed, this, [this](int report, double share) {
    if (report != number_ || !busy()) return;
    progress_ = share;
    Q_EMIT workChanged();
  });
  connect(&renderer_, &ReportRenderer::ready, this, [this](int report, const ReportPages& pages) {
    if (report != number_) return;
    pages_ = pages;
    setWork({});
    Q_EMIT pagesChanged();
  });
  connect(&renderer_, &ReportRenderer::failed, this, [this](int report, const QString& message) {
    if (report == number_) fail(message);
  });
  // Who looks at a report and chooses another vessel wants hers.
  connect(&store_, &AppViewModel::selectedVesselIDChanged, this, [this] {
    if (report_.isEmpty() || app_.page() != u"report") return;
    if (ordered()) {
      if (!order_.again) return;
      order_ = order_.again();
    }
    show({{QStringLiteral("report"), report_}});
  });
  connect(&store_, &AppViewModel::prefixChanged, this, &ReportDesk::forget);
}

// ---- which report ----

void ReportDesk::openWorkList(const TaskListModel* list) {
  tasks_ = list ? list->query() : TaskQuery();
  app_.open(QStringLiteral("report"), {{QStringLiteral("report"), workListName()}});
}

QString ReportDesk::workListFileName() const {
  const Vessel* shown = store_.selectedVessel();
  return fileNameFor(QStringLiteral("Work list"), shown ? toQt(shown->name) : QString(), store_.now(),
                     store_.calendar(), QStringLiteral("csv"));
}

void ReportDesk::openServiceHistory(bool detailed) {
  app_.open(QStringLiteral("report"), {{QStringLiteral("report"), historyName(detailed)}});
}

void ReportDesk::open(ReportOrder order) {
  order_ = std::move(order);
  app_.open(QStringLiteral("report"), {{QStringLiteral("report"), order_.id}});
}

void ReportDesk::show(const QVariantMap& arguments) {
  report_ = arguments.value(QStringLiteral("report"), workListName()).toString();
  vessel_ = ordered() ? order_.vessel : store_.selectedVesselID();
  savedFile_.clear();
  Q_EMIT reportChanged();
  make();
}

void ReportDesk::cancel() {
  renderer_.cancel();
  fail(pages_.count > 0 ? QStringLiteral("Stopped: the report was neither saved nor printed.")
                        : QStringLiteral("Stopped. Open the report again to make it."));
}

QString ReportDesk::title() const {
  if (ordered()) return order_.title;
  if (report_ == workListName()) return QStringLiteral("Work list");
  if (report_ == historyName(true)) return QStringLiteral("Service History (Detailed)");
  return report_ == historyName(false) ? QStringLiteral("Service History") : QStringLiteral("Report");
}

const Vessel* ReportDesk::vessel() const { return vessel_ ? store_.vessels().find(*vessel_) : nullptr; }

QString ReportDesk::vesselName() const {
  const Vessel* shown = vessel();
  return shown ? toQt(shown->name) : QString();
}

QString ReportDesk::paper() const { return paperSize(preferences_); }

void ReportDesk::setPaper(const QString& paper) {
  preferences_.setPreference(QString::fromUtf16(kPaperSizeKey), paper);
  Q_EMIT reportChanged();
  make();
}

// ---- making it ----

ReportSetting ReportDesk::setting(const std::optional<Uuid>& vessel) const {
  const VesselProfile* profile = vessel ? store_.profileOf(*vessel) : nullptr;
  return {.now = store_.now(),
          .calendar = profile ? aboard(*profile, store_.calendar()) : store_.calendar(),
          .numbers = format_.numbers(),
          .paper = paper() == u"letter" ? PaperSize::letter : PaperSize::a4,
          .litres = format_.metric()};
}

DocumentMaker ReportDesk::documentMaker() const {
  if (ordered()) return order_.document(setting(order_.vessel));
  const Vessel& shown = *vessel();
  const VesselProfile* known = store_.profileOf(shown.id);
  const VesselProfile profile = known ? *known : VesselProfile();
  const ReportSetting made = setting(shown.id);
  if (report_ == workListName()) {
    return [tasks = ofVessel(store_.tasks().records(), shown.id), logs = ofVessel(store_.logs().records(), shown.id),
            shown, profile, made, query = tasks_] { return workListReport(tasks, logs, shown, profile, query, made); };
  }
  std::unordered_map<Uuid, std::string> equipment;
  for (const EquipmentItem& item : store_.equipment().records()) equipment.emplace(item.id, recordName(item));
  ServiceHistoryOptions options{.detailed = report_ == historyName(true),
                                .from = history_.filter().from,
                                .to = history_.filter().until,
                                .photoFile =
                                    [files = &attachments_](std::string_view path) {
                                      const auto file = files->absolute(path);
                                      return file ? file->string() : std::string();
                                    },
                                .equipmentName =
                                    [equipment = std::move(equipment)](const Uuid& id) {
                                      const auto found = equipment.find(id);
                                      return found == equipment.end() ? std::string() : found->second;
                                    }};
  return [logs = history_.servicesOf(shown.id), shown, profile, options = std::move(options), made] {
    return serviceHistoryReport(logs, shown, profile, options, made);
  };
}

QString ReportDesk::obstacle() const {
  if (ordered()) return {};
  if (report_ != workListName() && report_ != historyName(false) && report_ != historyName(true))
    return QStringLiteral("This report is not at hand any more. Open it again from its own page.");
  if (!store_.rights(AppTabPermissionKey::tasks).read)
    return QStringLiteral("Your role in this account does not include the tasks.");
  return vessel() ? QString() : QStringLiteral("Add a vessel first: reports belong to one.");
}

void ReportDesk::forget() {
  if (report_.isEmpty()) return;
  order_ = {};
  printed_.reset();
  savedFile_.clear();
  // An order that is gone cannot be made again; the other reports show the fleet that is open now.
  show({{QStringLiteral("report"), report_}});
}

void ReportDesk::make() {
  pages_ = {};
  error_.clear();
  if (const QString why = obstacle(); !why.isEmpty()) {
    renderer_.cancel();
    number_ = 0;
    fail(why);
    Q_EMIT pagesChanged();
    return;
  }
  number_ = renderer_.begin(documentMaker());
  setWork(QStringLiteral("Laying out the pages…"));
  Q_EMIT pagesChanged();
}

void ReportDesk::setWork(const QString& work) {
  work_ = work;
  progress_ = 0;
  if (!work.isEmpty()) error_.clear();
  Q_EMIT workChanged();
}

void ReportDesk::fail(const QString& error) {
  work_.clear();
  error_ = error;
  Q_EMIT workChanged();
}

QString ReportDesk::remark() const {
  return pages_.missingCharacters.isEmpty()
             ? QString()
             : QStringLiteral("No typeface on this computer has these characters; they stay blank: %1")
                   .arg(pages_.missingCharacters);
}

// ---- what becomes of it ----

QString ReportDesk::fileName(const QString& ending) const {
  const QString given = ending != u"csv" ? pages_.fileName : ordered() ? order_.csvName : QString();
  if (!given.isEmpty()) return given + u'.' + ending;
  return fileNameFor(title(), vesselName(), store_.now(), store_.calendar(), ending);
}

void ReportDesk::withPdf(const QString& work, std::function<void(const QByteArray&)> use) {
  if (busy() || pages_.count == 0) return;
  setWork(work);
  renderer_.makePdf(number_, [this, use = std::move(use)](std::expected<QByteArray, ReportError> pdf) {
    QMetaObject::invokeMethod(this, [this, use, pdf = std::move(pdf)] {
      if (!pdf) {
        if (pdf.error().kind != ReportError::Kind::cancelled) fail(pdf.error().message);
        return;
      }
      setWork({});
      use(*pdf);
    });
  });
}

void ReportDesk::savePdf(const QUrl& file) {
  const QString path = withEnding(file.toLocalFile(), QStringLiteral("pdf"));
  withPdf(QStringLiteral("Saving…"), [this, path](const QByteArray& pdf) {
    if (const auto written = writeReportFile(path, pdf); !written) {
      fail(written.error().message);
      return;
    }
    savedFile_ = path;
    Q_EMIT workChanged();
    app_.toast(QStringLiteral("Saved to %1").arg(path), QStringLiteral("ok"));
  });
}

std::string ReportDesk::workListText(const TaskQuery& query, const Vessel& vessel) const {
  return workListCsv(store_.tasks().records(), store_.logs().records(), vessel, query, setting(vessel.id),
                     csvFormat(preferences_));
}

std::string ReportDesk::csvText() const {
  if (ordered()) return order_.csv ? order_.csv(setting(order_.vessel), csvFormat(preferences_)) : std::string();
  if (!obstacle().isEmpty()) return {};
  const Vessel* shown = vessel();
  if (report_ == workListName()) return workListText(tasks_, *shown);
  return serviceHistoryCsv(history_.servicesOf(shown->id), setting(shown->id).calendar, csvFormat(preferences_));
}

void ReportDesk::exportWorkList(const TaskListModel* list, const QUrl& file) {
  const Vessel* vessel = store_.selectedVessel();
  if (!vessel || !list) return;
  const QString path = withEnding(file.toLocalFile(), QStringLiteral("csv"));
  const auto written = writeReportFile(path, QByteArray::fromStdString(workListText(list->query(), *vessel)));
  if (written) {
    app_.toast(QStringLiteral("%1 tasks saved to %2").arg(format_.number(list->total()), path), QStringLiteral("ok"));
  } else {
    app_.toast(written.error().message, QStringLiteral("overdue"));
  }
}

void ReportDesk::saveCsv(const QUrl& file) {
  const std::string text = csvText();
  if (text.empty()) return;
  const QString path = withEnding(file.toLocalFile(), QStringLiteral("csv"));
  if (const auto written = writeReportFile(path, QByteArray::fromStdString(text)); !written) {
    fail(written.error().message);
    return;
  }
  savedFile_ = path;
  Q_EMIT workChanged();
  app_.toast(QStringLiteral("Saved to %1").arg(path), QStringLiteral("ok"));
}

QString ReportDesk::temporaryPdf(const QByteArray& pdf) {
  if (!printed_) printed_ = std::make_unique<QTemporaryDir>();
  const QString path = printed_->filePath(fileName(QStringLiteral("pdf")));
  if (const auto written = writeReportFile(path, pdf); !written) {
    fail(written.error().message);
    return {};
  }
  return path;
}

void ReportDesk::printInViewer() {
  withPdf(QStringLiteral("Preparing to print…"), [this](const QByteArray& pdf) {
    const QString path = temporaryPdf(pdf);
    if (path.isEmpty()) return;
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
      app_.toast(QStringLiteral("Opened in the desktop’s PDF viewer: print it from there."), QStringLiteral("ok"));
    } else {
      fail(QStringLiteral(
          "No program on this computer opens PDF files. Save the report instead and print it elsewhere."));
    }
  });
}

bool ReportDesk::hasPrinterCommand() const { return !QStandardPaths::findExecutable(QStringLiteral("lp")).isEmpty(); }

void ReportDesk::printDirectly() {
  withPdf(QStringLiteral("Sending to the printer…"), [this](const QByteArray& pdf) {
    const QString path = temporaryPdf(pdf);
    if (path.isEmpty()) return;
    auto* command = new QProcess(this);
    connect(command, &QProcess::errorOccurred, this, [this, command] {
      fail(QStringLiteral("The printer command could not be run: %1").arg(command->errorString()));
      command->deleteLater();
    });
    connect(command, &QProcess::finished, this, [this, command](int status) {
      if (status == 0) {
        app_.toast(QStringLiteral("Sent to the default printer."), QStringLiteral("ok"));
      } else {
        fail(QStringLiteral("The printer did not take the report: %1")
                 .arg(QString::fromLocal8Bit(command->readAllStandardError()).simplified()));
      }
      command->deleteLater();
    });
    command->start(QStringLiteral("lp"), {QStringLiteral("-t"), title(), QStringLiteral("--"), path});
  });
}

void ReportDesk::openSaved() {
  if (!savedFile_.isEmpty() && !QDesktopServices::openUrl(QUrl::fromLocalFile(savedFile_)))
    fail(QStringLiteral("No program on this computer opens %1.").arg(savedFile_));
}

}  // namespace thalvorn::app
