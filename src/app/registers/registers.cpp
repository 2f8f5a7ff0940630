#include "app/registers/registers.h"

#include <QQmlEngine>

#include "app/registers/bunkering_controller.h"
#include "app/registers/ships_log_controller.h"
#include "app/text.h"

namespace thalvorn::app {

namespace {

QVariantMap named(const std::string& name, std::string_view detail) {
  return {{QStringLiteral("name"), toQt(name)}, {QStringLiteral("detail"), toQt(detail)}};
}

std::string fullName(const std::string& first, const std::string& last) {
  return first.empty() || last.empty() ? first + last : first + " " + last;
}

}  // namespace

Registers::Registers(const RegisterTools& tools) : tools_(tools) {
  registers_.push_back(std::make_unique<ShipsLogController>(tools, RegisterScope::selectedVessel));
  registers_.push_back(std::make_unique<ShipsLogController>(tools, RegisterScope::fleet));
  registers_.push_back(std::make_unique<BunkeringController>(tools));
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
  QVariantList list;
  for (const CrewMember& member : tools_.store.crewMembers().records()) {
    if (member.vesselID == tools_.store.selectedVesselID() && member.isActive)
      list.append(named(fullName(member.firstName, member.lastName), member.role.display()));
  }
  return list;
}

QVariantList Registers::guests() const {
  QVariantList list;
  for (const GuestProfile& guest : tools_.store.guestProfiles().records()) {
    if (guest.vesselID == tools_.store.selectedVesselID())
      list.append(named(fullName(guest.firstName, guest.lastName), guest.partyGroup));
  }
  return list;
}

QVariantList Registers::equipment() const {
  QVariantList list;
  for (const EquipmentItem& item : tools_.store.equipment().records()) {
    if (item.vesselID == tools_.store.selectedVesselID())
      list.append(named(item.component, fullName(item.make, item.model)));
  }
  return list;
}

QString Registers::userName() const { return toQt(tools_.store.displayName()); }

}  // namespace thalvorn::app
