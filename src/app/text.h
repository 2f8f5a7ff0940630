#pragma once

#include <QString>
#include <string_view>

namespace thalvorn::app {

/// The domain's UTF-8 as Qt's text.
inline QString toQt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace thalvorn::app
