#pragma once

#include <QAbstractListModel>
#include <QTimer>
#include <QUrl>
#include <memory>

#include "app/app_controller.h"
#include "app/format.h"
#include "core/task_csv_import.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// Tasks from a CSV text: what was pasted or loaded, and a row for each of its lines as it was understood. The text is
/// read on a worker thread shortly after it stops changing. QML sees it as `TaskImport`.
class TaskImport : public QAbstractListModel {
  Q_OBJECT
  Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
  Q_PROPERTY(QString heldFile READ heldFile NOTIFY textChanged)
  Q_PROPERTY(QString referenceTitle READ referenceTitle CONSTANT)
  Q_PROPERTY(QString reference READ reference CONSTANT)
  Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)
  Q_PROPERTY(int count READ count NOTIFY previewChanged)
  Q_PROPERTY(int valid READ valid NOTIFY previewChanged)
  Q_PROPERTY(QString validText READ validText NOTIFY previewChanged)
  Q_PROPERTY(QString skippedText READ skippedText NOTIFY previewChanged)
  Q_PROPERTY(QString importText READ importText NOTIFY previewChanged)
  Q_PROPERTY(bool canImport READ canImport NOTIFY previewChanged)
  Q_PROPERTY(QString problem READ problem NOTIFY previewChanged)
  Q_PROPERTY(QString remark READ remark NOTIFY previewChanged)
  Q_PROPERTY(QString error READ error NOTIFY errorChanged)

 public:
  TaskImport(AppViewModel& store, AppController& app, const Format& format, QObject* parent = nullptr);
  ~TaskImport() override;

  /// What stands in the text area. A text too large for it is held beside: then this is its beginning, for reading
  /// only.
  QString text() const { return text_; }
  void setText(const QString& text);
  /// "tasks.csv · 6.8 MB": the large text that is held; empty when the text area has everything.
  QString heldFile() const { return heldFile_; }
  QString referenceTitle() const;
  QString reference() const;

  bool busy() const { return busy_; }
  int count() const { return static_cast<int>(preview_->rows.size()); }
  int valid() const { return static_cast<int>(preview_->valid); }
  /// "5 valid", "2 skipped", "Import 5 tasks".
  QString validText() const;
  QString skippedText() const;
  QString importText() const;
  bool canImport() const { return valid() > 0 && !busy_ && current_; }
  /// What is wrong with the header line.
  QString problem() const;
  /// Columns that are not known.
  QString remark() const;
  /// Why a file could not be read or the tasks not be added.
  QString error() const { return error_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  Q_INVOKABLE void loadSample();
  /// Reads a file; on failure the text stays as it is.
  Q_INVOKABLE void loadFile(const QUrl& file);
  /// Takes a clipboard text that is too large for the text area; false when the area can take it itself.
  Q_INVOKABLE bool pasteLarge();
  /// Adds the valid rows to the vessel in view. On failure everything stays.
  Q_INVOKABLE bool importTasks();
  Q_INVOKABLE void clear();

 Q_SIGNALS:
  void textChanged();
  void busyChanged();
  void previewChanged();
  void errorChanged();

 private:
  enum Role {
    idRole = Qt::UserRole,
    lineRole,
    titleRole,
    categoryRole,
    iconRole,
    dueRole,
    intervalRole,
    meterRole,
    notesRole,
    validRole,
    problemsRole
  };
  struct FileRead;

  void hold(std::string text, const QString& name);
  void readSoon();
  void read();
  void show(std::shared_ptr<const TaskCsvPreview> preview);
  void setError(const QString& error);
  void setBusy(bool busy);

  AppViewModel& store_;
  AppController& app_;
  const Format& format_;
  QString text_;
  QString heldFile_;
  std::shared_ptr<const std::string> source_;  ///< what is read, UTF-8
  std::shared_ptr<const TaskCsvPreview> preview_;
  QTimer pause_;
  int generation_ = 0;   ///< of the text; older answers are dropped
  bool current_ = true;  ///< the preview is that of the text
  bool busy_ = false;
  QString error_;
};

}  // namespace thalvorn::app
