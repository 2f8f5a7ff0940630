#pragma once

#include <QLatin1StringView>

/// The names by which the desktop knows the program. The desktop file, the icon and the D-Bus name are one name.
namespace thalvorn {

inline constexpr QLatin1StringView kApplicationId{"org.thalvorn.Thalvorn"};
inline constexpr QLatin1StringView kProductName{"Thalvorn Yacht Systems"};
inline constexpr QLatin1StringView kLinkScheme{"thalvorn"};
inline constexpr QLatin1StringView kSearchProviderPath{"/org/thalvorn/Thalvorn/SearchProvider"};

}  // namespace thalvorn
