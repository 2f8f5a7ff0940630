#pragma once

#include <string_view>

#include "compliance/gmdss_register.h"
#include "operations/bunkering_register.h"
#include "operations/ships_log_register.h"

/// The registers that the window shows, listed once for its search and its links.
namespace thalvorn::app {

/// Calls `visit(std::type_identity<T>, icon)` for the record of every register; its page has the register's key.
template <class Visitor>
void forEachRegister(Visitor&& visit) {
  visit(std::type_identity<ShipsLogEntry>{}, std::u16string_view(u"book-open"));
  visit(std::type_identity<BunkeringRecord>{}, std::u16string_view(u"gas-pump"));
  visit(std::type_identity<GMDSSTestLog>{}, std::u16string_view(u"broadcast"));
}

}  // namespace thalvorn::app
