#include "app/library/task_import.h"

#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPointer>
#include <QThreadPool>

#include "app/maintenance/task_texts.h"
#include "app/save_outcome.h"
#include "core/task_repetition.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

constexpr auto kPause = 250ms;
constexpr qsizetype kMostInArea = 200'000;        ///< characters that the text area shows without delay
constexpr qint64 kMostBytes = 256 * 1024 * 1024;  ///< of a file

/// The beginning of a text, up to a line's end, short enough for the text area.
QString beginning(const std::string& text) {
  const std::size_t end = text.rfind('\n', static_cast<std::size_t>(kMostInArea) / 4);
  return toQt(std::string_view(text).substr(0, end == std::string::npos ? kMostInArea / 4 : end));
}

}  // namespace

/// A file's text, or why there is none.
struct TaskImport::FileRead {
  std::string text;
  QString fault;
};

TaskImport::TaskImport(AppViewModel& store, AppController& app, const Format& format, QObject* parent)
    : QAbstractListModel(parent),
      store_(store),
      app_(app),
      format_(format),
      source_(std::make_shared<const std::string>()),
      preview_(std::make_shared<const TaskCsvPreview>()) {
  pause_.setSingleShot(true);
  pause_.setInterval(kPause);
  connect(&pause_, &QTimer::timeout, this, &TaskImport::read);
}

TaskImport::~TaskImport() = default;

void TaskImport::setText(const QString& text) {
  if (text == text_ || !heldFile_.isEmpty()) return;
  text_ = text;
  source_ = std::make_shared<const std::string>(text.toStdString());
  setError({});
  Q_EMIT textChanged();
  readSoon();
}

QString TaskImport::referenceTitle() const { return toQt(taskCsvTexts().referenceTitle); }
QString TaskImport::reference() const { return toQt(taskCsvTexts().reference); }

void TaskImport::loadSample() {
  heldFile_.clear();
  setText(toQt(taskCsvTexts().sample));
}

void TaskImport::clear() {
  heldFile_.clear();
  text_.clear();
  source_ = std::make_shared<const std::string>();
  setError({});
  Q_EMIT textChanged();
  pause_.stop();
  ++generation_;
  setBusy(false);
  show(std::make_shared<const TaskCsvPreview>());
}

void TaskImport::hold(std::string text, const QString& name) {
  if (static_cast<qsizetype>(text.size()) <= kMostInArea) {
    heldFile_.clear();
    setText(toQt(text));
    return;
  }
  heldFile_ = name + QStringLiteral(" · ") + QLocale().formattedDataSize(static_cast<qint64>(text.size()), 1);
  text_ = beginning(text);
  source_ = std::make_shared<const std::string>(std::move(text));
  setError({});
  Q_EMIT textChanged();
  readSoon();
}

void TaskImport::loadFile(const QUrl& file) {
  const QString path = file.isLocalFile() ? file.toLocalFile() : file.toString();
  const int generation = ++generation_;
  setBusy(true);
  QThreadPool::globalInstance()->start([path, generation, self = QPointer<TaskImport>(this)] {
    auto read = std::make_shared<FileRead>();
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly)) {
      read->fault = in.errorString();
    } else if (in.size() > kMostBytes) {
      read->fault = QStringLiteral("It is larger than 256 MB.");
    } else {
      const QByteArray bytes = in.readAll();
      if (in.error() != QFile::NoError) read->fault = in.errorString();
      read->text = csvTextFromBytes(bytes.toStdString());
    }
    QMetaObject::invokeMethod(qApp, [self, read, path, generation] {
      if (!self || generation != self->generation_) return;
      self->setBusy(false);
      if (!read->fault.isEmpty()) {
        self->setError(QStringLiteral("Could not read CSV file. ") + read->fault);
      } else {
        self->hold(std::move(read->text), QFileInfo(path).fileName());
      }
    });
  });
}

bool TaskImport::pasteLarge() {
  const QString text = QGuiApplication::clipboard()->text();
  if (text.size() <= kMostInArea) return false;
  hold(text.toStdString(), QStringLiteral("Pasted text"));
  return true;
}

// ---- reading ----

void TaskImport::readSoon() {
  ++generation_;
  current_ = false;
  Q_EMIT previewChanged();
  pause_.start();
}

void TaskImport::read() {
  const int generation = ++generation_;
  setBusy(true);
  QThreadPool::globalInstance()->start(
      [source = source_, calendar = store_.calendar(), generation, self = QPointer<TaskImport>(this)] {
        auto preview = std::make_shared<const TaskCsvPreview>(previewTaskCsv(*source, calendar));
        QMetaObject::invokeMethod(qApp, [self, preview, generation] {
          if (!self || generation != self->generation_) return;
          self->setBusy(false);
          self->show(preview);
        });
      });
}

void TaskImport::show(std::shared_ptr<const TaskCsvPreview> preview) {
  beginResetModel();
  preview_ = std::move(preview);
  current_ = true;
  endResetModel();
  Q_EMIT previewChanged();
}

void TaskImport::setBusy(bool busy) {
  if (busy == busy_) return;
  busy_ = busy;
  Q_EMIT busyChanged();
  Q_EMIT previewChanged();
}

void TaskImport::setError(const QString& error) {
  if (error == error_) return;
  error_ = error;
  Q_EMIT errorChanged();
}

// ---- what is shown ----

QString TaskImport::validText() const { return format_.number(valid()) + QStringLiteral(" valid"); }

QString TaskImport::skippedText() const {
  return format_.number(static_cast<double>(preview_->skipped)) + QStringLiteral(" skipped");
}

QString TaskImport::importText() const { return QStringLiteral("Import %1 tasks").arg(valid()); }

QString TaskImport::problem() const { return source_->empty() ? QString() : toQt(preview_->problem); }

QString TaskImport::remark() const {
  QStringList names;
  for (const std::string& name : preview_->ignoredColumns) names << toQt(name);
  return names.isEmpty() ? QString() : QStringLiteral("Columns that are not read: ") + names.join(QStringLiteral(", "));
}

int TaskImport::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant TaskImport::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= count()) return {};
  const TaskCsvRow& row = preview_->rows[static_cast<std::size_t>(index.row())];
  switch (role) {
    case idRole:
    case lineRole:
      return static_cast<qlonglong>(row.line);
    case titleRole:
      return toQt(previewTitle(row));
    case categoryRole:
      return row.category ? toQt(row.category->display()) : QString();
    case iconRole:
      return row.category ? categoryIcon(*row.category) : QString();
    case dueRole: {
      QStringList due;
      if (row.dueDate) due << format_.date(Format::toQml(*row.dueDate));
      if (row.dueAtHours) due << format_.hours(*row.dueAtHours);
      return due.join(QStringLiteral(" or "));
    }
    case intervalRole: {
      const std::string interval = intervalText(row.recurringDays, row.recurringHours);
      return interval.empty() ? QString() : QStringLiteral("every ") + toQt(interval);
    }
    case meterRole:
      return row.triggerType == TriggerType::date ? QString() : toQt(row.hourSource.display());
    case notesRole:
      return toQt(row.notes).simplified();
    case validRole:
      return row.valid;
    case problemsRole: {
      QStringList problems;
      for (const std::string& problem : row.problems) problems << toQt(problem);
      return problems.join(u' ');
    }
    default:
      return {};
  }
}

QHash<int, QByteArray> TaskImport::roleNames() const {
  return {{idRole, "id"},       {lineRole, "line"},   {titleRole, "title"},       {categoryRole, "category"},
          {iconRole, "icon"},   {dueRole, "due"},     {intervalRole, "interval"}, {meterRole, "meter"},
          {notesRole, "notes"}, {validRole, "valid"}, {problemsRole, "problems"}};
}

bool TaskImport::importTasks() {
  if (!canImport()) return false;
  const Vessel* vessel = store_.selectedVessel();
  if (!vessel) {
    setError(QStringLiteral("Add a vessel first: the tasks belong to it. The text stays here."));
    return false;
  }
  Edit edit;
  for (MaintenanceTask& task : tasksFromRows(preview_->rows, *vessel, store_.now(), store_.calendar()))
    edit.add(std::move(task));
  edit.label = std::to_string(edit.changes.size()) + " tasks imported to “" + vessel->name + "”";
  const QString label = toQt(edit.label);
  if (const QString refusal = refusalOf(store_.apply(std::move(edit))); !refusal.isEmpty()) {
    setError(refusal + QStringLiteral(" The text stays here."));
    return false;
  }
  clear();
  app_.toast(label + QStringLiteral(" · Ctrl+Z takes it back"), QStringLiteral("ok"));
  return true;
}

}  // namespace thalvorn::app
