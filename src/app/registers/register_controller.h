#pragma once

#include <QObject>
#include <QUrl>
#include <QVariant>
#include <memory>

#include "app/app_controller.h"
#include "app/format.h"
#include "app/preview/report_desk.h"
#include "app/registers/register_model.h"
#include "store/app_view_model.h"
#include "store/attachments.h"

namespace thalvorn::app {

/// What every register works with.
struct RegisterTools {
  AppViewModel& store;
  const AttachmentStore& attachments;
  PreferenceStore& preferences;
  AppController& app;
  const Format& format;
  ReportDesk& reports;
};

/// A sum or a count above a list: {label, value, note} as people read it.
struct RegisterFigure {
  QString label;
  QString value;
  QString note = {};
};

/// A paper that a register prints.
struct RegisterPaper {
  QString key;
  QString title;       ///< above its preview
  QString text;        ///< in the menu
  bool ofOne = false;  ///< of a single record, offered beside it; else of the chosen records, or all shown
};

/// A register as its page uses it: its list, figures and papers, and what can be done with its records.
class RegisterController : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString key READ key CONSTANT)
  Q_PROPERTY(QString title READ title CONSTANT)
  Q_PROPERTY(QString singular READ singular CONSTANT)
  Q_PROPERTY(QString plural READ plural CONSTANT)
  Q_PROPERTY(thalvorn::app::RegisterModel* model READ model CONSTANT)
  Q_PROPERTY(bool hasVessel READ hasVessel NOTIFY changed)
  Q_PROPERTY(QString vesselName READ vesselName NOTIFY changed)
  Q_PROPERTY(QVariantList figures READ figures NOTIFY changed)
  Q_PROPERTY(QVariantList charts READ charts NOTIFY changed)
  Q_PROPERTY(QVariantList papers READ paperList CONSTANT)
  Q_PROPERTY(QVariantList recordPapers READ recordPaperList CONSTANT)
  Q_PROPERTY(bool imports READ imports CONSTANT)
  Q_PROPERTY(int revision READ revision NOTIFY changed)

 public:
  virtual QString key() const = 0;
  virtual QString title() const = 0;
  virtual QString singular() const = 0;
  virtual QString plural() const = 0;
  virtual RegisterModel* model() const = 0;
  /// Whether the list has vessels to show records of.
  bool hasVessel() const;
  /// Of the vessel in view; empty where the list is of the whole fleet.
  QString vesselName() const;

  /// [{label, value, note}] over what is shown.
  QVariantList figures() const { return figures_; }
  /// [{title, unit, bars: [{label, value, text}]}].
  QVariantList charts() const { return charts_; }
  /// [{value, text, icon}], as menus take them.
  QVariantList paperList() const;
  QVariantList recordPaperList() const;
  virtual bool imports() const { return true; }
  /// Counts the changes of the records; bindings that call `detail` depend on it.
  int revision() const { return revision_; }

  /// A form for the record, or for a new one when the id is empty, owned by the caller; null when it is gone or there
  /// is no vessel it could belong to.
  Q_INVOKABLE virtual QObject* sheet(const QString& id) = 0;
  /// See describeRecord; empty when there is no such record.
  Q_INVOKABLE virtual QVariantMap detail(const QString& id) const = 0;
  /// Deletes records in one edit, which can be undone.
  Q_INVOKABLE virtual void remove(const QStringList& ids) = 0;
  /// Deletes the chosen records.
  Q_INVOKABLE void removeChosen();
  /// Makes sure that a record is shown: its vessel comes into view, filters that hide it go. False when it is gone.
  Q_INVOKABLE virtual bool reveal(const QString& id) = 0;

  /// Opens a paper: of one record, or of the chosen ones, or of all shown.
  Q_INVOKABLE virtual void print(const QString& paper, const QString& id = {}) = 0;
  /// Writes what is chosen, or all that is shown, as a spreadsheet. Tells how it went by a message.
  Q_INVOKABLE void exportCsv(const QUrl& file);
  Q_INVOKABLE QString exportName() const;
  /// Reads a spreadsheet: {summary, problem, problems, count}. Nothing is kept until `importRead`.
  Q_INVOKABLE virtual QVariantMap readCsv(const QUrl& file) = 0;
  /// Adds the records that were read last.
  Q_INVOKABLE virtual void importRead() = 0;

 Q_SIGNALS:
  void changed();
  /// The form of a record saved it.
  void recordSaved(const QString& id);

 protected:
  explicit RegisterController(const RegisterTools& tools, QObject* parent);

  virtual std::vector<RegisterFigure> figuresShown() const { return {}; }
  virtual QVariantList chartsShown() const { return {}; }
  virtual std::vector<RegisterPaper> papers() const { return {}; }
  virtual std::string csvText(const ReportSetting& setting, const CsvFormat& format) const = 0;
  /// The name offered for the spreadsheet, without ending.
  virtual QString csvName() const;
  /// Of the chosen records; of all shown when none is chosen.
  virtual QStringList chosenIds() const = 0;

  /// The vessel in view; none where the list is of the whole fleet.
  std::optional<Uuid> vesselInView() const;
  /// To be called once the list exists.
  void follow();
  void say(const QString& text, const QString& tone) { tools_.app.toast(text, tone); }
  /// Applies it and tells why when it is refused; true when it was taken.
  bool applyEdit(Edit edit);

  RegisterTools tools_;

 private:
  void renew();

  QVariantList figures_;
  QVariantList charts_;
  int revision_ = 0;
};

}  // namespace thalvorn::app
