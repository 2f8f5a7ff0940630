#pragma once

#include <qqmlregistration.h>
#include <QAbstractListModel>
#include <QPointer>
#include <QSet>
#include <vector>

namespace thalvorn::app {

/// A list model with headings: rows of `source` that follow each other with the same value of `groupRole` stand under
/// one heading, which folds. The source keeps its own order; with no `groupRole` the rows pass through as they are.
/// Headings have the roles isSection (true), sectionTitle, sectionCount and sectionCollapsed.
class GroupedRows : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QAbstractItemModel* source READ source WRITE setSource NOTIFY sourceChanged)
  Q_PROPERTY(QString groupRole READ groupRole WRITE setGroupRole NOTIFY groupRoleChanged)
  Q_PROPERTY(QString idRole MEMBER idRole_)

 public:
  explicit GroupedRows(QObject* parent = nullptr);

  QAbstractItemModel* source() const { return source_; }
  void setSource(QAbstractItemModel* source);
  QString groupRole() const { return groupRole_; }
  void setGroupRole(const QString& role);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// Folds or unfolds the heading at `row`; other rows are left alone.
  Q_INVOKABLE void setCollapsed(int row, bool collapsed);
  Q_INVOKABLE void setAllCollapsed(bool collapsed);
  /// The row of the record with this id; -1 when it is not there or folded away.
  Q_INVOKABLE int rowOf(const QVariant& id) const;

 Q_SIGNALS:
  void sourceChanged();
  void groupRoleChanged();

 private:
  enum Role { isSectionRole = Qt::UserRole + 10000, sectionTitleRole, sectionCountRole, sectionCollapsedRole };
  struct Section {
    QString title;
    int first = 0;  ///< source row
    int count = 0;
  };

  int roleNumber(const QString& name) const;
  void rebuild();
  void layOut();
  void forwardChange(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles);

  QPointer<QAbstractItemModel> source_;
  QString groupRole_;
  QString idRole_ = QStringLiteral("id");
  QSet<QString> collapsed_;
  std::vector<Section> sections_;
  std::vector<int> rows_;  ///< a source row, or -1 - section for a heading
};

}  // namespace thalvorn::app
