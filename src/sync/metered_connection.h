#pragma once

#include <QObject>

#include "base/enums.h"
#include "store/local_cache.h"

namespace thalvorn {

/// What the user has said about a connection that is paid by volume, as satellite and harbour SIM cards are.
enum class MeteredChoice : std::uint8_t {
  automatic,  ///< as the desktop says
  on,
  off
};

template <>
struct EnumTexts<MeteredChoice> {
  static constexpr std::array<EnumText, 3> table{{{"automatic", "Automatic"}, {"on", "On"}, {"off", "Off"}}};
};

/// Whether the present connection is metered. The choice belongs to this computer, whoever is signed in.
class MeteredConnection : public QObject {
  Q_OBJECT

 public:
  explicit MeteredConnection(LocalCache& cache, QObject* parent = nullptr) : QObject(parent), cache_(cache) {}

  MeteredChoice choice() const;
  void setChoice(MeteredChoice choice);
  /// What the desktop says of the connection; counts while the choice is left to it.
  void setDesktopSays(bool metered);
  bool isMetered() const;

 Q_SIGNALS:
  void changed();

 private:
  LocalCache& cache_;
  bool desktopSays_ = false;
};

}  // namespace thalvorn
