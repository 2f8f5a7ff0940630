#include "app/registers/registers.h"

#include <QQmlEngine>
#include <algorithm>
#include <set>

#include "app/registers/bunkering_controller.h"
#include "app/registers/gmdss_controller.h"
#include "app/registers/ships_log_controller.h"
#include "app/text.h"
#include "base/search_text.h"

namespace thalvorn::app {

namespace {

/// Names to pick from, each once: those of the library first, then those written before.
class Names {
 public:
  void add(const std::string& name, std::string_view detail) {
    if (name.empty() || list_.size() >= kMost || !known_.insert(foldText(name)).second) return;
    list_.append(QVariantMap{{QStringLiteral("name"), toQt(name)}, {QStringLiteral("detail"), toQt(detail)}});
  }
  QVariantList take() { return std::move(list_); }

 private:
  static constexpr qsizetype kMost = 40;

  std::set<std::string> known_;
  QVariantList list_;
};

std::string fullName(const std::string& first, const std::string& last) {
  return first.empty() || last.empty() ? first + last : first + " " + last;
}

}  // namespace

Registers::Registers(const RegisterTools& tools) : tools_(tools) {
  registers_.push_back(std::make_unique<ShipsLogController>(tools, RegisterScope::selectedVessel));
  registers_.push_back(std::make_unique<ShipsLogController>(tools, RegisterScope::fleet));
  registers_.push_back(std::make_unique<BunkeringController>(tools));
  registers_.push_back(std::make_unique<GMDSSController>(tools));
  for (const auto& one : registers_) QQmlEngine::setObjectOwnership(one.get(), QQmlEngine::CppOwnership);
  connect(&tools_.store, &AppViewModel::selectedVesselIDChanged, this, &Registers::peopleChanged);
  connect(&tools_.store, &AppViewModel::reloaded, this, &Registers::peopleChanged);
  connect(&tools_.store, &AppViewModel::edited, this, &Registers::peopleChanged);
}

QObject* Registers::of(const QString& key) const {
  for (const auto& one : registers_)
    if (one->key() == key) return one.get();
  return nullptr;
}

QVariantList Registers::crew() const {
  Names names;
  for (const CrewMember& member : tools_.store.crewMembers().records()) {
    if (member.vesselID == tools_.store.selectedVesselID() && member.isActive)
      names.add(fullName(member.firstName, member.lastName), member.role.display());
  }
  for (const ShipsLogEntry* entry : latestEntries()) {
    names.add(entry->skipper, displayText(CrewDutyRole::captain));
    for (const CrewDutyEntry& duty : entry->crewRoster) names.add(duty.name, duty.role.display());
  }
  return names.take();
}

QVariantList Registers::guests() const {
  Names names;
  for (const GuestProfile& guest : tools_.store.guestProfiles().records()) {
    if (guest.vesselID == tools_.store.selectedVesselID())
      names.add(fullName(guest.firstName, guest.lastName), guest.partyGroup);
  }
  for (const ShipsLogEntry* entry : latestEntries())
    for (const GuestManifestEntry& guest : entry->guests) names.add(guest.name, guest.note);
  return names.take();
}

QVariantList Registers::equipment() const {
  Names names;
  for (const EquipmentItem& item : tools_.store.equipment().records()) {
    if (item.vesselID == tools_.store.selectedVesselID()) names.add(item.component, fullName(item.make, item.model));
  }
  return names.take();
}

std::vector<const ShipsLogEntry*> Registers::latestEntries() const {
  constexpr std::size_t kEntries = 20;
  std::vector<const ShipsLogEntry*> entries;
  for (const ShipsLogEntry& entry : tools_.store.shipsLog().records())
    if (entry.vesselID == tools_.store.selectedVesselID()) entries.push_back(&entry);
  const auto end = entries.begin() + static_cast<std::ptrdiff_t>(std::min(kEntries, entries.size()));
  std::ranges::partial_sort(entries, end, std::ranges::greater(), &ShipsLogEntry::date);
  entries.erase(end, entries.end());
  return entries;
}

QString Registers::userName() const { return toQt(tools_.store.displayName()); }

}  // namespace thalvorn::app
