#pragma once

#include <QString>
#include <optional>
#include <span>

#include "compliance/account_member.h"

namespace thalvorn::app {

/// One page of the program. Pages with a group stand in the sidebar, in table order; Ctrl+1 to Ctrl+9 open the first
/// nine.
struct PageEntry {
  const char16_t* id;     ///< Name used to open it: App.open("maintenance"), --page maintenance, deep links.
  const char16_t* title;  ///< As the sidebar and the search show it.
  const char16_t* icon;   ///< Drawing or symbol name of the icon table.
  const char16_t* group;  ///< Heading in the sidebar; empty for the first, unnamed group; null when not in the sidebar.
  const char16_t* source;                          ///< QML file below the module's folder, loaded on first use.
  std::optional<AppTabPermissionKey> module = {};  ///< Whose rights the page needs; empty: every member has it.
};

/// Every page. A new module is one entry here and one QML file.
std::span<const PageEntry> pageTable();

/// The entry with this id, or null.
const PageEntry* findPage(const QString& id);

/// The address of a file of the QML module.
QString qmlAddress(const QString& source);

}  // namespace thalvorn::app
