#include "app/module_table.h"

#include <algorithm>
#include <array>

namespace thalvorn::app {

namespace {

constexpr std::array kPages = std::to_array<PageEntry>({
    {u"home", u"Home", u"house", u"", u"maintenance/HomePage.qml", AppTabPermissionKey::tasks},
    {u"maintenance", u"Maintenance", u"wrench", u"", u"maintenance/MaintenancePage.qml", AppTabPermissionKey::tasks},
    {u"serviceHistory", u"Service history", u"clock-counter-clockwise", u"", u"maintenance/ServiceHistoryPage.qml",
     AppTabPermissionKey::tasks},
    {u"taskLibrary", u"Task library", u"books", u"", u"maintenance/TaskLibraryPage.qml", AppTabPermissionKey::tasks},
    {u"recurringTasks", u"Recurring tasks", u"repeat", u"Planning", u"maintenance/RecurringTasksPage.qml",
     AppTabPermissionKey::tasks},
    {u"templateLibrary", u"Template library", u"stack", u"Planning", u"maintenance/TemplateLibraryPage.qml",
     AppTabPermissionKey::tasks},
    {u"importTasks", u"Import tasks", u"file-csv", u"Planning", u"maintenance/ImportTasksPage.qml",
     AppTabPermissionKey::tasks},
    {u"shipsLog", u"Ship's log", u"book-open", u"Operations", u"registers/ShipsLogPage.qml",
     AppTabPermissionKey::shipslog},
    {u"bunkering", u"Fuel bunkering", u"gas-pump", u"Operations", u"registers/BunkeringPage.qml",
     AppTabPermissionKey::bunkering},
    {u"gmdss", u"GMDSS radio log", u"broadcast", u"Compliance", u"registers/GMDSSPage.qml", AppTabPermissionKey::gmdss},
    {u"vessels", u"Vessels", u"boat", u"Fleet", u"fleet/VesselsPage.qml", AppTabPermissionKey::tasks},
    {u"account", u"Account", u"users", u"Fleet", u"account/AccountPage.qml"},
    {u"settings", u"Settings", u"gear", u"Fleet", u"fleet/SettingsPage.qml"},
    {u"statusList", u"Tasks by status", u"list-checks", nullptr, u"maintenance/StatusListPage.qml",
     AppTabPermissionKey::tasks},
    {u"shipsLogSearch", u"Search and export past trips", u"magnifying-glass", nullptr,
     u"registers/ShipsLogSearchPage.qml", AppTabPermissionKey::shipslog},
    {u"report", u"Report", u"file-text", nullptr, u"reports/ReportPage.qml"},
    {u"sync", u"Sync", u"arrows-clockwise", nullptr, u"account/SyncPage.qml"},
    {u"gallery", u"Component gallery", u"squares-four", nullptr, u"shell/GalleryPage.qml"},
});

}  // namespace

std::span<const PageEntry> pageTable() { return kPages; }

const PageEntry* findPage(const QString& id) {
  const auto found = std::ranges::find_if(kPages, [&](const PageEntry& page) { return id == QStringView(page.id); });
  return found == kPages.end() ? nullptr : &*found;
}

QString qmlAddress(const QString& source) { return QStringLiteral("qrc:/qml/Thalvorn/") + source; }

}  // namespace thalvorn::app
