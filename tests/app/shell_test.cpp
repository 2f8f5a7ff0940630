#include <gtest/gtest.h>

#include <QFile>
#include <QHash>
#include <QSet>
#include <QStandardItemModel>

#include "app/app_controller.h"
#include "app/command_table.h"
#include "app/grouped_rows.h"
#include "app/icon_table.h"
#include "app/module_table.h"
#include "app/options.h"
#include "app/search_model.h"
#include "core/maintenance_enums.h"

namespace thalvorn::app {
namespace {

class FakePreferences : public PreferenceStore {
 public:
  QString preference(const QString& key) const override { return values.value(key); }
  void setPreference(const QString& key, const QString& value) override { values[key] = value; }
  QHash<QString, QString> values;
};

TEST(Commands, NameExistingPagesAndNoKeyTwice) {
  QSet<QString> keys;
  for (const Command& command : commandTable()) {
    const QString title = QString::fromUtf16(command.title);
    if (*command.page) EXPECT_TRUE(findPage(QString::fromUtf16(command.page))) << title.toStdString();
    const QString key = QString::fromUtf16(command.shortcut);
    if (key.isEmpty()) continue;
    EXPECT_FALSE(keys.contains(key)) << key.toStdString();
    keys.insert(key);
  }
}

TEST(Commands, OfferTheProgramsMenuNotifications) {
  QHash<QString, QString> titles;
  for (const Command& command : commandTable()) {
    titles[QString::fromUtf16(command.notification)] = QString::fromUtf16(command.title);
  }
  EXPECT_EQ(titles[QStringLiteral("openTemplateLibrary")], QStringLiteral("Template Library…"));
  EXPECT_EQ(titles[QStringLiteral("openImportTasksCSV")], QStringLiteral("Import Tasks from CSV…"));
  EXPECT_EQ(titles[QStringLiteral("openManageVessels")], QStringLiteral("Manage Vessels…"));
  EXPECT_EQ(titles[QStringLiteral("openManageAccount")], QStringLiteral("Manage Account…"));
  EXPECT_EQ(titles[QStringLiteral("serviceHistoryDetailed")], QStringLiteral("Service History (Detailed)"));
  EXPECT_EQ(titles[QStringLiteral("maintenanceTasks")], QStringLiteral("Maintenance Tasks"));
  for (const char* name : {"openRecurringTasks", "addVesselRequested", "signOutRequested", "thalvornRequestSync"}) {
    EXPECT_TRUE(titles.contains(QString::fromLatin1(name))) << name;
  }
}

TEST(Icons, EveryNameHasADrawing) {
  for (const IconAlias& alias : iconAliases()) {
    const std::string path = ":/icons/" + std::string(alias.drawing) + ".svg";
    EXPECT_TRUE(QFile::exists(QString::fromStdString(path))) << alias.name;
    EXPECT_EQ(iconDrawing(alias.name), alias.drawing);
  }
  for (const PageEntry& page : pageTable()) {
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/icons/%1.svg").arg(QStringView(page.icon))));
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/qml/Thalvorn/%1").arg(QStringView(page.source))));
  }
  EXPECT_EQ(iconDrawing("gauge"), "gauge");
}

TEST(Navigation, GoesBackThroughPagesWithTheirArguments) {
  FakePreferences preferences;
  AppController app(preferences);
  std::vector<QString> posted;
  QObject::connect(&app, &AppController::notification, [&](const QString& name) { posted.push_back(name); });
  const QVariantMap task{{QStringLiteral("highlight"), QStringLiteral("42")}};
  app.open(QStringLiteral("taskLibrary"), task);
  app.post(QStringLiteral("openManageVessels"));
  EXPECT_EQ(app.page(), QStringLiteral("vessels"));
  EXPECT_FALSE(app.isSubPage()) << "a module of its own";
  EXPECT_EQ(posted, std::vector{QStringLiteral("openManageVessels")});
  app.open(QStringLiteral("vessels"));
  app.open(QStringLiteral("nowhere"));
  app.back();
  EXPECT_EQ(app.page(), QStringLiteral("taskLibrary"));
  EXPECT_EQ(app.pageArguments(), task);
  EXPECT_TRUE(app.isSubPage()) << "come to for one task";
  app.back();
  EXPECT_EQ(app.page(), QStringLiteral("home"));
  EXPECT_FALSE(app.canGoBack());
}

TEST(Appearance, FollowsTheDesktopUntilChosenAndIsRemembered) {
  FakePreferences preferences;
  {
    AppController app(preferences);
    EXPECT_FALSE(app.dark());
    app.setDesktopDark(true);
    EXPECT_TRUE(app.dark());
    app.setAppearance(QStringLiteral("light"));
    EXPECT_FALSE(app.dark());
  }
  EXPECT_EQ(preferences.values[QStringLiteral("thalvorn.appearance")], QStringLiteral("light"));
  preferences.values[QStringLiteral("thalvorn.appearance")] = QStringLiteral("purple");
  EXPECT_EQ(AppController(preferences).appearance(), QStringLiteral("system"));
}

TEST(Modules, HiddenOnesAreRemembered) {
  FakePreferences preferences;
  {
    AppController app(preferences);
    app.setModuleHidden(QStringLiteral("recurringTasks"), true);
    app.setModuleHidden(QStringLiteral("importTasks"), true);
    app.setModuleHidden(QStringLiteral("nowhere"), true);
    app.setModuleHidden(QStringLiteral("recurringTasks"), false);
  }
  EXPECT_EQ(AppController(preferences).hiddenModules(), QStringList{QStringLiteral("importTasks")});
}

TEST(Options, RefusesWhatItDoesNotUnderstand) {
  const auto parse = [](const QStringList& words) {
    return parseOptions(QStringList{QStringLiteral("thalvorn")} + words);
  };
  const auto good = parse({QStringLiteral("--demo"), QStringLiteral("--size"), QStringLiteral("1920x1080"),
                           QStringLiteral("thalvorn://open/tasks/1")});
  ASSERT_TRUE(good);
  EXPECT_TRUE(good->demo);
  EXPECT_EQ(good->size, QSize(1920, 1080));
  EXPECT_EQ(good->link, QStringLiteral("thalvorn://open/tasks/1"));
  EXPECT_EQ(parse({QStringLiteral("--help")}).error().status, 0);
  for (const QStringList& bad :
       {QStringList{QStringLiteral("--page"), QStringLiteral("nowhere")},
        QStringList{QStringLiteral("--size"), QStringLiteral("big")},
        QStringList{QStringLiteral("--scheme"), QStringLiteral("sepia")}, QStringList{QStringLiteral("--unheard-of")},
        QStringList{QStringLiteral("file.csv")}}) {
    const auto result = parse(bad);
    ASSERT_FALSE(result) << bad.join(u' ').toStdString();
    EXPECT_EQ(result.error().status, 2);
    EXPECT_FALSE(result.error().text.isEmpty());
  }
}

TEST(Search, MatchesTheBeginningsOfWords) {
  EXPECT_TRUE(matchesWords(QStringLiteral("Service History (Detailed)"), QStringLiteral("det serv")));
  EXPECT_FALSE(matchesWords(QStringLiteral("Service History"), QStringLiteral("story")));
  SearchModel search;
  search.addSource(pagesAndCommands());
  search.setWords(QStringLiteral("templ"));
  ASSERT_EQ(search.count(), 2);
  QString page;
  QString notification;
  QObject::connect(&search, &SearchModel::chosen, [&](const QString& to, const QVariantMap&, const QString& posted) {
    page = to;
    notification = posted;
  });
  search.choose(0);
  EXPECT_EQ(page, QStringLiteral("templateLibrary"));
  search.choose(1);
  EXPECT_EQ(notification, QStringLiteral("openTemplateLibrary"));
}

class Grouped : public testing::Test {
 protected:
  Grouped() {
    source_.setItemRoleNames({{Qt::UserRole, "id"}, {Qt::UserRole + 1, "category"}});
    for (const char* category : {"Engine", "Engine", "Hull", "Safety", "Safety", "Safety"}) add(category);
    rows_.setSource(&source_);
    rows_.setGroupRole(QStringLiteral("category"));
  }
  void add(const char* category) {
    auto* item = new QStandardItem;
    item->setData(source_.rowCount(), Qt::UserRole);
    item->setData(QString::fromLatin1(category), Qt::UserRole + 1);
    source_.appendRow(item);
  }
  QVariant value(int row, const char* role) { return rows_.index(row).data(rows_.roleNames().key(role)); }
  /// One letter per row: the initial of a heading, a dot for a record.
  std::string shape() {
    std::string text;
    for (int row = 0; row < rows_.rowCount(); ++row) {
      text += value(row, "isSection").toBool() ? value(row, "sectionTitle").toString().toStdString().front() : '.';
    }
    return text;
  }

  QStandardItemModel source_;
  GroupedRows rows_;
};

TEST_F(Grouped, PutsAHeadingOverEachRunAndFoldsIt) {
  EXPECT_EQ(shape(), "E..H.S...");
  EXPECT_EQ(value(5, "sectionCount"), 3);
  rows_.setCollapsed(0, true);
  EXPECT_EQ(shape(), "EH.S...");
  EXPECT_TRUE(value(0, "sectionCollapsed").toBool());
  EXPECT_EQ(rows_.rowOf(0), -1);
  EXPECT_EQ(rows_.rowOf(5), 6);
  rows_.setCollapsed(2, true);
  EXPECT_EQ(shape(), "EH.S...") << "a record does not fold";
  rows_.setCollapsed(0, false);
  EXPECT_EQ(shape(), "E..H.S...");
  EXPECT_EQ(value(2, "id"), 1);
  rows_.setAllCollapsed(true);
  EXPECT_EQ(shape(), "EHS");
}

TEST_F(Grouped, KeepsFoldedGroupsWhenTheSourceChanges) {
  rows_.setCollapsed(0, true);
  add("Safety");
  EXPECT_EQ(shape(), "EH.S....");
  source_.removeRow(2);
  EXPECT_EQ(shape(), "ES....");
  rows_.setGroupRole(QString());
  EXPECT_EQ(shape(), "......");
}

TEST_F(Grouped, RegroupsWhenARecordChangesItsGroup) {
  std::vector<int> told;
  QObject::connect(&rows_, &QAbstractItemModel::dataChanged,
                   [&](const QModelIndex& first, const QModelIndex&) { told.push_back(first.row()); });
  source_.item(5)->setData(7, Qt::UserRole);
  EXPECT_EQ(told, std::vector<int>{8});
  source_.item(2)->setData(QStringLiteral("Safety"), Qt::UserRole + 1);
  EXPECT_EQ(shape(), "E..S....");
}

}  // namespace
}  // namespace thalvorn::app
