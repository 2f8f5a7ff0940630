#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QStringList>
#include <QVariant>
#include <vector>

namespace thalvorn::app {

/// Where a few settings of the program are kept between starts.
class PreferenceStore {
 public:
  virtual ~PreferenceStore() = default;
  virtual QString preference(const QString& key) const = 0;
  virtual void setPreference(const QString& key, const QString& value) = 0;
};

/// Pages that the user's role in the account keeps from him, by id. Home is always there.
struct PageAccess {
  QStringList closed;    ///< not shown anywhere
  QStringList readOnly;  ///< shown, but nothing there can be changed
  friend bool operator==(const PageAccess&, const PageAccess&) = default;
};

/// The window's state: which page is shown, what was posted, how it looks. QML sees it as `App`.
class AppController : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString phase READ phase NOTIFY phaseChanged)
  Q_PROPERTY(bool drawn READ drawn NOTIFY drawnChanged)
  Q_PROPERTY(QString appearance READ appearance WRITE setAppearance NOTIFY appearanceChanged)
  Q_PROPERTY(bool dark READ dark NOTIFY darkChanged)
  Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)
  Q_PROPERTY(QString page READ page NOTIFY pageChanged)
  Q_PROPERTY(QVariantMap pageArguments READ pageArguments NOTIFY pageChanged)
  Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY pageChanged)
  Q_PROPERTY(bool isSubPage READ isSubPage NOTIFY pageChanged)
  Q_PROPERTY(QVariantList pages READ pages CONSTANT)
  Q_PROPERTY(QStringList hiddenModules READ hiddenModules NOTIFY hiddenModulesChanged)
  Q_PROPERTY(QStringList closedPages READ closedPages NOTIFY accessChanged)
  Q_PROPERTY(bool readOnly READ readOnly NOTIFY readOnlyChanged)
  Q_PROPERTY(QString readOnlyHint READ readOnlyHint CONSTANT)
  Q_PROPERTY(QVariantList menus READ menus NOTIFY accessChanged)
  Q_PROPERTY(QVariantList shortcuts READ shortcuts CONSTANT)
  Q_PROPERTY(QVariantMap statusHelp READ statusHelp CONSTANT)
  Q_PROPERTY(QString version READ version CONSTANT)
  Q_PROPERTY(QString problem READ problem CONSTANT)

 public:
  explicit AppController(PreferenceStore& preferences, QObject* parent = nullptr);

  /// "welcome" until a fleet is chosen, "loading" while its records are read, then "ready".
  QString phase() const { return phase_; }
  void setPhase(const QString& phase);
  /// The window has shown its first picture; what that did not need is made now.
  bool drawn() const { return drawn_; }
  void setDrawn();

  /// "system", "light" or "dark"; kept under "thalvorn.appearance".
  QString appearance() const { return appearance_; }
  void setAppearance(const QString& appearance);
  /// The same for this run only.
  void showIn(const QString& appearance);
  bool dark() const;
  bool reducedMotion() const { return reducedMotion_; }
  /// What the desktop asks for; used where the appearance is "system".
  void setDesktopDark(bool dark);
  void setReducedMotion(bool reduced);

  QString page() const { return current_.page; }
  QVariantMap pageArguments() const { return current_.arguments; }
  bool canGoBack() const { return !history_.empty(); }
  /// True when the page was come to from another one, not chosen as a module: then it shows the way back.
  bool isSubPage() const;

  /// All pages: {id, title, icon, group, source, inSidebar, shortcut}.
  QVariantList pages() const;
  /// Ids of the pages that the user keeps out of the sidebar; they stay reachable by menu and search.
  QStringList hiddenModules() const;
  Q_INVOKABLE void setModuleHidden(const QString& page, bool hidden);

  /// What the user's role in the account leaves him.
  void setAccess(const PageAccess& access);
  QStringList closedPages() const { return access_.closed; }
  bool isClosed(const QString& page) const { return access_.closed.contains(page); }
  /// Whether the menus and the search offer what posts this.
  bool offers(const QString& notification) const;
  /// Nothing on the page in view can be changed by this user: what changes records is off there.
  bool readOnly() const { return access_.readOnly.contains(current_.page); }
  QString readOnlyHint() const;

  /// The menu bar: [{title, items: [{title, shortcut, notification, separator, enabled}]}].
  QVariantList menus() const;
  /// Every key the shell itself listens to: [{keys, notification}].
  QVariantList shortcuts() const;
  /// How a task's status is determined: {title, section, introduction, rules: [{label, text, tone}], elsewhere}.
  QVariantMap statusHelp() const;
  QString version() const;
  /// Why the store cannot be opened, and what to do; empty when it is open.
  QString problem() const { return problem_; }
  void setProblem(const QString& problem) { problem_ = problem; }

  /// Shows a page. `arguments` reach the page as its `args` and by its signal `opened`, for instance {"highlight": …}.
  Q_INVOKABLE void open(const QString& page, const QVariantMap& arguments = {});
  /// Returns to the page before, with the arguments it had.
  Q_INVOKABLE void back();
  /// Posts an in-process notification by name, for instance "openTemplateLibrary"; its page opens first.
  Q_INVOKABLE void post(const QString& name);
  /// Opens a form over the window: a QML file below the module's folder whose root is a FormSheet, with its properties.
  /// A form that changes what the user may only read does not open; he is told why.
  Q_INVOKABLE void openSheet(const QString& source, const QVariantMap& properties = {});

  /// A short message at the bottom; `tone` is "", "ok", "soon" or "overdue".
  Q_INVOKABLE void toast(const QString& text, const QString& tone = {});
  /// Remembers one value between starts; `recall` gives it back, or `otherwise`.
  Q_INVOKABLE void remember(const QString& key, const QString& value);
  Q_INVOKABLE QString recall(const QString& key, const QString& otherwise = {}) const;
  Q_INVOKABLE void copyText(const QString& text) const;

 Q_SIGNALS:
  void phaseChanged();
  void drawnChanged();
  void appearanceChanged();
  void darkChanged();
  void reducedMotionChanged();
  void pageChanged();
  void hiddenModulesChanged();
  void accessChanged();
  void readOnlyChanged();
  void notification(const QString& name);
  void sheetRequested(const QString& source, const QVariantMap& properties);
  void toastRequested(const QString& text, const QString& tone);

 private:
  struct Place {
    QString page;
    QVariantMap arguments;
  };

  PreferenceStore& preferences_;
  QString phase_ = QStringLiteral("loading");
  bool drawn_ = false;
  QString problem_;
  QString appearance_;
  bool desktopDark_ = false;
  bool reducedMotion_ = false;
  bool refuseClosed(const QString& page);

  PageAccess access_;
  Place current_{QStringLiteral("home"), {}};
  std::vector<Place> history_;
};

}  // namespace thalvorn::app
