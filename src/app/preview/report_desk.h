#pragma once

#include <QObject>
#include <QString>
#include <QTemporaryDir>
#include <QUrl>
#include <QVariant>

#include "app/app_controller.h"
#include "app/format.h"
#include "app/history/service_history_model.h"
#include "app/maintenance/task_list_model.h"
#include "app/preview/report_renderer.h"
#include "base/csv.h"
#include "core/report_basics.h"
#include "store/app_view_model.h"
#include "store/attachments.h"

namespace thalvorn::app {

/// A paper that a register hands over to be looked at, printed and saved.
struct ReportOrder {
  QString id;                       ///< names it while it can be made again, "bunkering.report"
  QString title;                    ///< as the page shows it
  std::optional<Uuid> vessel = {};  ///< whose zone its times are in, and whose name the page shows
  QString csvName = {};             ///< offered for its spreadsheet, without ending; the title and the day when empty
  /// Works from copies, since it runs while the records change.
  std::function<DocumentMaker(const ReportSetting&)> document;
  std::function<std::string(const ReportSetting&, const CsvFormat&)> csv = {};  ///< none: it has no spreadsheet
  /// The same of the vessel in view now; none: it stays as it is when another vessel is chosen.
  std::function<ReportOrder()> again = {};
};

/// Opens reports to look at, print and save. QML sees it as `Reports`.
class ReportDesk : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString report READ report NOTIFY reportChanged)
  Q_PROPERTY(QString title READ title NOTIFY reportChanged)
  Q_PROPERTY(QString vesselName READ vesselName NOTIFY reportChanged)
  Q_PROPERTY(int number READ number NOTIFY pagesChanged)
  Q_PROPERTY(int pageCount READ pageCount NOTIFY pagesChanged)
  Q_PROPERTY(qreal pageWidth READ pageWidth NOTIFY pagesChanged)
  Q_PROPERTY(qreal pageHeight READ pageHeight NOTIFY pagesChanged)
  Q_PROPERTY(QString remark READ remark NOTIFY pagesChanged)
  Q_PROPERTY(bool busy READ busy NOTIFY workChanged)
  Q_PROPERTY(QString work READ work NOTIFY workChanged)
  Q_PROPERTY(double progress READ progress NOTIFY workChanged)
  Q_PROPERTY(QString error READ error NOTIFY workChanged)
  Q_PROPERTY(QString savedFile READ savedFile NOTIFY workChanged)
  Q_PROPERTY(QString paper READ paper WRITE setPaper NOTIFY reportChanged)
  Q_PROPERTY(bool hasPrinterCommand READ hasPrinterCommand CONSTANT)
  Q_PROPERTY(bool hasCsv READ hasCsv NOTIFY reportChanged)

 public:
  ReportDesk(AppViewModel& store, const AttachmentStore& attachments, const ServiceHistoryModel& history,
             PreferenceStore& preferences, AppController& app, const Format& format, QObject* parent = nullptr);

  ReportRenderer& renderer() { return renderer_; }

  /// What a list of tasks shows of the vessel in view, with its search, filters and order, as a paper to work from.
  Q_INVOKABLE void openWorkList(const thalvorn::app::TaskListModel* list);
  /// The same tasks as a spreadsheet that the task import reads again.
  Q_INVOKABLE void exportWorkList(const thalvorn::app::TaskListModel* list, const QUrl& file);
  /// The name offered for that spreadsheet.
  Q_INVOKABLE QString workListFileName() const;
  /// The service history of the vessel in view, as its page shows it; `detailed` with notes, parts and photos.
  Q_INVOKABLE void openServiceHistory(bool detailed);

  /// Opens a register's paper.
  void open(ReportOrder order);
  /// When, where and for whom a paper is made of this vessel, or of several.
  ReportSetting setting(const std::optional<Uuid>& vessel) const;

  /// Makes the report that the page's arguments name: {report}; a work list when they name none.
  Q_INVOKABLE void show(const QVariantMap& arguments);
  Q_INVOKABLE void cancel();

  /// "workList", "serviceHistory", "serviceHistoryDetailed" or an order's id; empty before the first.
  QString report() const { return report_; }
  QString title() const;
  QString vesselName() const;
  int number() const { return number_; }
  int pageCount() const { return pages_.count; }
  qreal pageWidth() const { return pages_.size.width(); }
  qreal pageHeight() const { return pages_.size.height(); }
  /// Characters that would be blank on paper; empty when there are none.
  QString remark() const;
  bool busy() const { return !work_.isEmpty(); }
  /// What is being done: "Laying out the pages…".
  QString work() const { return work_; }
  double progress() const { return progress_; }
  QString error() const { return error_; }
  /// Where the report was saved last.
  QString savedFile() const { return savedFile_; }
  /// "a4" or "letter".
  QString paper() const;
  void setPaper(const QString& paper);
  /// Whether this computer can print without a viewer (the `lp` command).
  bool hasPrinterCommand() const;

  bool hasCsv() const { return !ordered() || order_.csv; }

  /// The name offered for a file with this ending.
  Q_INVOKABLE QString fileName(const QString& ending) const;
  Q_INVOKABLE void savePdf(const QUrl& file);
  /// The same entries as a spreadsheet.
  Q_INVOKABLE void saveCsv(const QUrl& file);
  /// Opens the PDF in the desktop's viewer, which prints.
  Q_INVOKABLE void printInViewer();
  /// Hands the PDF to the default printer.
  Q_INVOKABLE void printDirectly();
  Q_INVOKABLE void openSaved();

 Q_SIGNALS:
  void reportChanged();
  void pagesChanged();
  void workChanged();

 private:
  void make();
  /// Why the report that is asked for cannot be made; empty when it can.
  QString obstacle() const;
  /// Another fleet is open: nothing of the one before stays in view.
  void forget();
  DocumentMaker documentMaker() const;
  bool ordered() const { return !order_.id.isEmpty() && report_ == order_.id; }
  std::string workListText(const TaskQuery& query, const Vessel& vessel) const;
  std::string csvText() const;
  const Vessel* vessel() const;
  void withPdf(const QString& work, std::function<void(const QByteArray&)> use);
  /// Writes the PDF where a viewer or the printer can take it; empty when it could not be written.
  QString temporaryPdf(const QByteArray& pdf);
  void setWork(const QString& work);
  void fail(const QString& error);

  AppViewModel& store_;
  const AttachmentStore& attachments_;
  const ServiceHistoryModel& history_;
  PreferenceStore& preferences_;
  AppController& app_;
  const Format& format_;
  ReportRenderer renderer_;
  std::unique_ptr<QTemporaryDir> printed_;
  QString report_;
  std::optional<Uuid> vessel_;
  TaskQuery tasks_;  ///< of the work list
  ReportOrder order_;
  int number_ = 0;
  ReportPages pages_;
  QString work_;
  double progress_ = 0;
  QString error_;
  QString savedFile_;
};

}  // namespace thalvorn::app
