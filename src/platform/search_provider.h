#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace thalvorn {

/// What the desktop shows of a found record.
struct SearchMeta {
  QString name;
  QString description;
  QString iconName;   ///< from the icon theme; may be empty
  QString clipboard;  ///< text for "copy"; may be empty
};

/// What is searched. Implemented over the store; asked on the window's thread with each letter the user types, so it
/// answers from memory.
class DesktopSearchIndex {
 public:
  virtual ~DesktopSearchIndex() = default;

  /// The ids of the records that match all terms, the best first, at most `most` of them. The program chooses the ids;
  /// they come back in `meta` and in `SearchProvider::activated`.
  virtual QStringList find(const QStringList& terms, qsizetype most) const = 0;

  /// What to show of a record; an empty name when there is no such record (any more).
  virtual SearchMeta meta(const QString& id) const = 0;
};

/// Makes records findable from the desktop's own search: the D-Bus interface org.gnome.Shell.SearchProvider2 under the
/// program's bus name. Where there is no bus, nothing happens. A second window (of another store) takes over the name
/// when the first one closes.
class SearchProvider : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.gnome.Shell.SearchProvider2")

 public:
  /// As many results as one search answers with.
  static constexpr qsizetype kMostResults = 50;

  /// `index` must outlive the provider.
  SearchProvider(const DesktopSearchIndex& index, const QDBusConnection& bus, QObject* parent = nullptr);
  ~SearchProvider() override;

  // The names and arguments are those of the D-Bus interface. NOLINTBEGIN(readability-identifier-naming)
 public Q_SLOTS:
  Q_SCRIPTABLE QStringList GetInitialResultSet(const QStringList& terms);
  Q_SCRIPTABLE QStringList GetSubsearchResultSet(const QStringList& previousResults, const QStringList& terms);
  Q_SCRIPTABLE QList<QVariantMap> GetResultMetas(const QStringList& identifiers);
  Q_SCRIPTABLE void ActivateResult(const QString& identifier, const QStringList& terms, uint timestamp);
  Q_SCRIPTABLE void LaunchSearch(const QStringList& terms, uint timestamp);
  // NOLINTEND(readability-identifier-naming)

 Q_SIGNALS:
  /// The user opened a result; `timestamp` is the desktop's time of the click, for bringing the window forward.
  void activated(const QString& id, uint timestamp);

  /// The user wants to go on searching within the program.
  void searchRequested(const QStringList& terms, uint timestamp);

 private:
  void askBus(const QString& method, const QVariantList& arguments);

  const DesktopSearchIndex& index_;
  QDBusConnection bus_;
};

}  // namespace thalvorn
