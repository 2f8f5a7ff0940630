#pragma once

#include <span>
#include <string_view>

namespace thalvorn::app {

/// One name that records carry for an icon, and the bundled drawing shown for it (a file of assets/icons without
/// ".svg").
struct IconAlias {
  std::string_view name;
  std::string_view drawing;
};

/// The names of the platform-neutral symbol set that categories and checks are stored with, sorted by name.
std::span<const IconAlias> iconAliases();

/// The bundled drawing for a stored icon name. A name that is not in the table is taken as a drawing's own name.
std::string_view iconDrawing(std::string_view name);

}  // namespace thalvorn::app
