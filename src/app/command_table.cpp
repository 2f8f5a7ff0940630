#include "app/command_table.h"

#include <array>

namespace thalvorn::app {

namespace {

constexpr std::array kCommands = std::to_array<Command>({
    {u"&File", u"New", u"Ctrl+N", u"newRecord", u""},
    {u"&File", u"", u"", u"", u""},
    {u"&File", u"Import Tasks from CSV…", u"Ctrl+I", u"openImportTasksCSV", u"importTasks"},
    {u"&File", u"Export as CSV…", u"Ctrl+E", u"exportPage", u""},
    {u"&File", u"Print as PDF…", u"Ctrl+P", u"printPage", u""},
    {u"&File", u"", u"", u"", u""},
    {u"&File", u"Sign Out", u"", u"signOutRequested", u""},
    {u"&File", u"Quit", u"Ctrl+Q", u"quitRequested", u""},
    {u"&Edit", u"Undo", u"Ctrl+Z", u"undoRequested", u""},
    {u"&Edit", u"", u"", u"", u""},
    {u"&Edit", u"Find on This Page", u"Ctrl+F", u"findOnPage", u""},
    {u"&Edit", u"Search Everything…", u"Ctrl+K", u"openSearch", u""},
    {u"&View", u"Back", u"Alt+Left", u"goBack", u""},
    {u"&View", u"", u"", u"", u""},
    {u"&View", u"Appearance: System", u"", u"appearanceSystem", u""},
    {u"&View", u"Appearance: Light", u"", u"appearanceLight", u""},
    {u"&View", u"Appearance: Dark", u"", u"appearanceDark", u""},
    {u"&View", u"", u"", u"", u""},
    {u"&View", u"Full Screen", u"F11", u"toggleFullScreen", u""},
    {u"&Maintenance", u"Maintenance Tasks", u"Ctrl+Shift+M", u"maintenanceTasks", u"maintenance"},
    {u"&Maintenance", u"Task Library", u"", u"openTaskLibrary", u"taskLibrary"},
    {u"&Maintenance", u"Recurring Tasks…", u"", u"openRecurringTasks", u"recurringTasks"},
    {u"&Maintenance", u"Service History (Detailed)", u"Ctrl+Shift+H", u"serviceHistoryDetailed", u"serviceHistory"},
    {u"&Maintenance", u"", u"", u"", u""},
    {u"&Maintenance", u"Template Library…", u"Ctrl+T", u"openTemplateLibrary", u"templateLibrary"},
    {u"&Maintenance", u"Update Hour Meters…", u"Ctrl+M", u"openHoursEditor", u"", u"maintenance"},
    {u"F&leet", u"Manage Vessels…", u"Ctrl+Shift+V", u"openManageVessels", u"vessels"},
    {u"F&leet", u"Add Vessel…", u"", u"addVesselRequested", u"vessels"},
    {u"F&leet", u"", u"", u"", u""},
    {u"F&leet", u"Manage Account…", u"Ctrl+Shift+A", u"openManageAccount", u"account"},
    {u"F&leet", u"Sync Now", u"F5", u"thalvornRequestSync", u""},
    {u"F&leet", u"Sync Status…", u"Ctrl+Shift+S", u"openSyncStatus", u"sync"},
    {u"F&leet", u"", u"", u"", u""},
    {u"F&leet", u"Settings", u"Ctrl+,", u"openSettings", u"settings"},
    {u"&Help", u"About This Page", u"F1", u"openHelp", u""},
    {u"&Help", u"How task status is determined", u"", u"openStatusHelp", u""},
    {u"&Help", u"Keyboard Shortcuts", u"Ctrl+?", u"openShortcuts", u""},
    {u"&Help", u"", u"", u"", u""},
    {u"&Help", u"No admin tools available", u"", u"", u""},
    {u"&Help", u"About Thalvorn Yacht Systems", u"", u"openAbout", u""},
});

}  // namespace

std::span<const Command> commandTable() { return kCommands; }

}  // namespace thalvorn::app
