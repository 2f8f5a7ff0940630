#include "app/app_controller.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeySequence>
#include <algorithm>

#include "app/command_table.h"
#include "app/module_table.h"
#include "app/status_tone.h"
#include "app/text.h"
#include "core/task_status.h"

namespace thalvorn::app {

namespace {

constexpr std::size_t kHistoryLength = 50;
constexpr int kNumberedPages = 9;

QString appearanceKey() { return QStringLiteral("thalvorn.appearance"); }

QString hiddenModulesKey() { return QStringLiteral("thalvorn.hiddenModulesRaw"); }

QString text(const char16_t* literal) { return literal ? QString::fromUtf16(literal) : QString(); }

QString shown(const QString& portable) {
  return QKeySequence(portable, QKeySequence::PortableText).toString(QKeySequence::NativeText);
}

}  // namespace

AppController::AppController(PreferenceStore& preferences, QObject* parent)
    : QObject(parent), preferences_(preferences), appearance_(preferences.preference(appearanceKey())) {
  if (appearance_ != u"light" && appearance_ != u"dark") appearance_ = QStringLiteral("system");
}

void AppController::setPhase(const QString& phase) {
  if (phase == phase_) return;
  phase_ = phase;
  Q_EMIT phaseChanged();
}

void AppController::setDrawn() {
  if (drawn_) return;
  drawn_ = true;
  Q_EMIT drawnChanged();
}

void AppController::setAppearance(const QString& appearance) {
  if (appearance == appearance_) return;
  preferences_.setPreference(appearanceKey(), appearance);
  showIn(appearance);
}

void AppController::showIn(const QString& appearance) {
  const bool before = dark();
  appearance_ = appearance;
  Q_EMIT appearanceChanged();
  if (dark() != before) Q_EMIT darkChanged();
}

bool AppController::dark() const { return appearance_ == u"dark" || (appearance_ != u"light" && desktopDark_); }

void AppController::setDesktopDark(bool dark) {
  const bool before = this->dark();
  desktopDark_ = dark;
  if (this->dark() != before) Q_EMIT darkChanged();
}

void AppController::setReducedMotion(bool reduced) {
  if (reduced == reducedMotion_) return;
  reducedMotion_ = reduced;
  Q_EMIT reducedMotionChanged();
}

bool AppController::isSubPage() const {
  const PageEntry* page = findPage(current_.page);
  return canGoBack() && (!current_.arguments.isEmpty() || !page || !page->group);
}

QVariantList AppController::pages() const {
  QVariantList list;
  int number = 0;
  for (const PageEntry& page : pageTable()) {
    const bool inSidebar = page.group != nullptr;
    if (inSidebar) ++number;
    list.append(QVariantMap{
        {QStringLiteral("id"), text(page.id)},
        {QStringLiteral("title"), text(page.title)},
        {QStringLiteral("icon"), text(page.icon)},
        {QStringLiteral("group"), text(page.group)},
        {QStringLiteral("source"), qmlAddress(text(page.source))},
        {QStringLiteral("inSidebar"), inSidebar},
        {QStringLiteral("shortcut"),
         inSidebar && number <= kNumberedPages ? QStringLiteral("Ctrl+%1").arg(number) : QString()},
    });
  }
  return list;
}

QStringList AppController::hiddenModules() const {
  return preferences_.preference(hiddenModulesKey()).split(u',', Qt::SkipEmptyParts);
}

void AppController::setModuleHidden(const QString& page, bool hidden) {
  QStringList pages = hiddenModules();
  if (pages.contains(page) == hidden || !findPage(page)) return;
  if (hidden) {
    pages.append(page);
  } else {
    pages.removeAll(page);
  }
  preferences_.setPreference(hiddenModulesKey(), pages.join(u','));
  Q_EMIT hiddenModulesChanged();
}

void AppController::setAccess(const PageAccess& access) {
  if (access == access_) return;
  access_ = access;
  access_.closed.removeAll(QStringLiteral("home"));
  Q_EMIT accessChanged();
  Q_EMIT readOnlyChanged();
  std::erase_if(history_, [this](const Place& place) { return isClosed(place.page); });
  if (isClosed(current_.page)) {
    current_ = {QStringLiteral("home"), {}};
    Q_EMIT pageChanged();
  }
}

bool AppController::offers(const QString& notification) const {
  const auto command = std::ranges::find_if(
      commandTable(), [&](const Command& entry) { return notification == QStringView(entry.notification); });
  return command == commandTable().end() || (!isClosed(text(command->page)) && !isClosed(text(command->needs)));
}

QString AppController::readOnlyHint() const {
  return QStringLiteral(
      "Your role in this account lets you read here, not change anything. An administrator of the "
      "account can give you more.");
}

bool AppController::refuseClosed(const QString& page) {
  if (!isClosed(page)) return false;
  toast(QStringLiteral("Your role in this account does not include this page."), QStringLiteral("soon"));
  return true;
}

QVariantList AppController::menus() const {
  struct Menu {
    QString title;
    QVariantList items;
  };
  const auto isSeparator = [](const QVariant& item) {
    return item.toMap().value(QStringLiteral("separator")).toBool();
  };
  std::vector<Menu> menus;
  for (const Command& command : commandTable()) {
    const QString menu = text(command.menu);
    if (menus.empty() || menus.back().title != menu) menus.push_back({menu, {}});
    QVariantList& items = menus.back().items;
    const QString title = text(command.title);
    const QString name = text(command.notification);
    // Where the role closes a page its lines are gone, and two separators never meet.
    if (!offers(name) || (title.isEmpty() && (items.isEmpty() || isSeparator(items.last())))) continue;
    items.append(QVariantMap{{QStringLiteral("title"), title},
                             {QStringLiteral("shortcut"), shown(text(command.shortcut))},
                             {QStringLiteral("notification"), name},
                             {QStringLiteral("separator"), title.isEmpty()},
                             {QStringLiteral("enabled"), !name.isEmpty()}});
  }
  QVariantList list;
  for (Menu& menu : menus) {
    if (!menu.items.isEmpty() && isSeparator(menu.items.last())) menu.items.removeLast();
    if (menu.items.isEmpty()) continue;
    list.append(QVariantMap{{QStringLiteral("title"), menu.title}, {QStringLiteral("items"), menu.items}});
  }
  return list;
}

QVariantList AppController::shortcuts() const {
  QVariantList list;
  for (const Command& command : commandTable()) {
    if (!*command.shortcut) continue;
    list.append(QVariantMap{{QStringLiteral("keys"), text(command.shortcut)},
                            {QStringLiteral("shown"), shown(text(command.shortcut))},
                            {QStringLiteral("title"), text(command.title)},
                            {QStringLiteral("notification"), text(command.notification)}});
  }
  return list;
}

QVariantMap AppController::statusHelp() const {
  const StatusHelp& help = thalvorn::statusHelp();
  QVariantList rules;
  for (const StatusHelp::Rule& rule : help.rules) {
    rules.append(QVariantMap{{QStringLiteral("label"), toQt(rule.label)},
                             {QStringLiteral("text"), toQt(rule.text)},
                             {QStringLiteral("tone"), statusTone(rule.status)}});
  }
  return {{QStringLiteral("title"), toQt(help.title)},
          {QStringLiteral("section"), toQt(help.section)},
          {QStringLiteral("introduction"), toQt(help.introduction)},
          {QStringLiteral("rules"), rules},
          {QStringLiteral("elsewhere"), toQt(help.elsewhere)}};
}

QString AppController::version() const { return QStringLiteral(THALVORN_VERSION); }

void AppController::open(const QString& page, const QVariantMap& arguments) {
  if (!findPage(page)) {
    qWarning("There is no page named %s", qUtf8Printable(page));
    return;
  }
  if (refuseClosed(page)) return;
  if (page == current_.page && arguments == current_.arguments) {
    // The same record again: the page shows it once more.
    if (!arguments.isEmpty()) Q_EMIT pageChanged();
    return;
  }
  history_.push_back(current_);
  if (history_.size() > kHistoryLength) history_.erase(history_.begin());
  current_ = {page, arguments};
  Q_EMIT pageChanged();
  Q_EMIT readOnlyChanged();
}

void AppController::back() {
  if (history_.empty()) return;
  current_ = history_.back();
  history_.pop_back();
  Q_EMIT pageChanged();
  Q_EMIT readOnlyChanged();
}

void AppController::post(const QString& name) {
  const auto command = std::ranges::find_if(
      commandTable(), [&](const Command& entry) { return name == QStringView(entry.notification); });
  if (command != commandTable().end()) {
    if (refuseClosed(text(command->page)) || refuseClosed(text(command->needs))) return;
    if (*command->page) open(text(command->page));
  }
  Q_EMIT notification(name);
}

void AppController::openSheet(const QString& source, const QVariantMap& properties) {
  // A form belongs to the page of its name, else to the pages of its folder, else to the page in view.
  const auto pageWith = [](const QString& beginning) {
    return std::ranges::find_if(pageTable(), [&](const PageEntry& page) {
      return page.module && QStringView(page.source).startsWith(beginning);
    });
  };
  auto owner = pageWith(QString(source).replace(QStringLiteral("Sheet.qml"), QStringLiteral("Page.qml")));
  if (owner == pageTable().end()) owner = pageWith(source.section(u'/', 0, 0) + u'/');
  const bool barred = owner == pageTable().end() ? readOnly() && !source.startsWith(u"account/")
                                                 : access_.readOnly.contains(text(owner->id));
  if (barred) {
    toast(readOnlyHint(), QStringLiteral("soon"));
    return;
  }
  Q_EMIT sheetRequested(qmlAddress(source), properties);
}

void AppController::toast(const QString& text, const QString& tone) { Q_EMIT toastRequested(text, tone); }

void AppController::remember(const QString& key, const QString& value) { preferences_.setPreference(key, value); }

QString AppController::recall(const QString& key, const QString& otherwise) const {
  const QString value = preferences_.preference(key);
  return value.isEmpty() ? otherwise : value;
}

void AppController::copyText(const QString& text) const { QGuiApplication::clipboard()->setText(text); }

}  // namespace thalvorn::app
