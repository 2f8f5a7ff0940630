#include "sync/metered_connection.h"

#include "store/preferences.h"

namespace thalvorn {

MeteredChoice MeteredConnection::choice() const {
  return caseFromRaw<MeteredChoice>(Preferences(cache_).text(preference_keys::meteredConnection))
      .value_or(MeteredChoice::automatic);
}

void MeteredConnection::setChoice(MeteredChoice choice) {
  if (choice == this->choice()) return;
  Preferences(cache_).setText(preference_keys::meteredConnection, std::string(rawText(choice)));
  Q_EMIT changed();
}

void MeteredConnection::setDesktopSays(bool metered) {
  if (metered == desktopSays_) return;
  desktopSays_ = metered;
  Q_EMIT changed();
}

bool MeteredConnection::isMetered() const {
  const MeteredChoice chosen = choice();
  return chosen == MeteredChoice::automatic ? desktopSays_ : chosen == MeteredChoice::on;
}

}  // namespace thalvorn
