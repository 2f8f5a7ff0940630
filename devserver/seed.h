#pragma once

#include <expected>
#include <string>
#include <vector>

#include "devserver/gateway.h"

namespace thalvorn::devserver {

struct SeededPerson {
  std::string email;
  std::string password;
};

/// Signs two people up and gives each an account with seats to spare. Without migrations there are people and no
/// accounts. The error says what was refused.
std::expected<std::vector<SeededPerson>, std::string> seed(Gateway& gateway, Site& site,
                                                           const DatabaseAddresses& database);

}  // namespace thalvorn::devserver
