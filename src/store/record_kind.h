#pragma once

#include <boost/mp11.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "base/date_format.h"
#include "compliance/account_member.h"
#include "compliance/crew_board_post.h"
#include "compliance/crew_member.h"
#include "compliance/gmdss_test_log.h"
#include "compliance/ism_check.h"
#include "compliance/ism_record.h"
#include "compliance/marpol_record.h"
#include "core/maintenance_task.h"
#include "core/service_log.h"
#include "core/vessel.h"
#include "core/vessel_profile.h"
#include "operations/bunkering_record.h"
#include "operations/saved_waypoint.h"
#include "operations/ships_log_entry.h"
#include "operations/voyage_plan.h"
#include "records/calendar_event.h"
#include "records/conflict_note.h"
#include "records/equipment_item.h"
#include "records/guest_profile.h"
#include "records/ship_contact.h"
#include "records/ship_document.h"
#include "records/subscription_account.h"
#include "records/yard_period.h"

namespace thalvorn {

/// What the store, the cache, the sync steps and the command line need to know of one kind of record.
struct KindFacts {
  std::string_view collection;  ///< the store's field, also its name on the command line
  std::string_view suffix;      ///< of the cache entry, behind the user's prefix
  std::string_view table;       ///< of the backend
  std::string_view singular;    ///< as a person reads it
  std::string_view plural;
  /// The module whose access a member needs; empty: every member may.
  std::optional<AppTabPermissionKey> permission;
};

template <class T>
struct RecordKind;

#define THALVORN_RECORD_KIND(Type, ...)            \
  template <>                                      \
  struct RecordKind<Type> {                        \
    static constexpr KindFacts facts{__VA_ARGS__}; \
  }

THALVORN_RECORD_KIND(Vessel, "vessels", "_vessels", "vessels", "vessel", "vessels", AppTabPermissionKey::tasks);
THALVORN_RECORD_KIND(MaintenanceTask, "tasks", "_tasks", "maintenance_tasks", "task", "tasks",
                     AppTabPermissionKey::tasks);
THALVORN_RECORD_KIND(ServiceLog, "logs", "_logs", "service_logs", "service log", "service logs",
                     AppTabPermissionKey::tasks);
THALVORN_RECORD_KIND(ShipsLogEntry, "shipsLog", "_shipslog", "ships_log", "ship's log entry", "ship's log entries",
                     AppTabPermissionKey::shipslog);
THALVORN_RECORD_KIND(VesselProfile, "vesselProfiles", "_profiles", "vessel_profiles", "vessel profile",
                     "vessel profiles", AppTabPermissionKey::tasks);
THALVORN_RECORD_KIND(BunkeringRecord, "bunkeringRecords", "_bunkering", "bunkering_records", "bunkering record",
                     "bunkering records", AppTabPermissionKey::bunkering);
THALVORN_RECORD_KIND(EquipmentItem, "equipment", "_equipment", "equipment", "equipment item", "equipment items",
                     AppTabPermissionKey::equipment);
THALVORN_RECORD_KIND(SubscriptionAccount, "subscriptions", "_subscriptions", "subscription_accounts", "subscription",
                     "subscriptions", AppTabPermissionKey::subscriptions);
THALVORN_RECORD_KIND(ShipDocument, "documents", "_documents", "ship_documents", "document", "documents",
                     AppTabPermissionKey::documents);
THALVORN_RECORD_KIND(ShipContact, "contacts", "_contacts", "ship_contacts", "contact", "contacts",
                     AppTabPermissionKey::contacts);
THALVORN_RECORD_KIND(VoyagePlan, "voyagePlans", "_voyageplans", "voyage_plans", "voyage plan", "voyage plans",
                     AppTabPermissionKey::voyage);
THALVORN_RECORD_KIND(SavedWaypoint, "savedWaypoints", "_saved_waypoints", "saved_waypoints", "waypoint", "waypoints",
                     AppTabPermissionKey::voyage);
THALVORN_RECORD_KIND(YardPeriod, "yardPeriods", "_yard_periods", "yard_periods", "yard period", "yard periods",
                     AppTabPermissionKey::yardRefit);
THALVORN_RECORD_KIND(CrewBoardPost, "crewBoardPosts", "_crew_board", "crew_board_posts", "crew board post",
                     "crew board posts", std::nullopt);
THALVORN_RECORD_KIND(ISMRecord, "ismRecords", "_ism", "ism_records", "ISM record", "ISM records",
                     AppTabPermissionKey::ism);
THALVORN_RECORD_KIND(MarpolRecord, "marpolRecords", "_marpol", "marpol_records", "MARPOL record", "MARPOL records",
                     AppTabPermissionKey::marpol);
THALVORN_RECORD_KIND(GMDSSTestLog, "gmdssTestLogs", "_gmdss", "gmdss_test_logs", "GMDSS test log", "GMDSS test logs",
                     AppTabPermissionKey::gmdss);
THALVORN_RECORD_KIND(CrewMember, "crewMembers", "_crew", "crew_members", "crew member", "crew members",
                     AppTabPermissionKey::crew);
THALVORN_RECORD_KIND(GuestProfile, "guestProfiles", "_guests", "guest_profiles", "guest", "guests",
                     AppTabPermissionKey::guests);
THALVORN_RECORD_KIND(CalendarEvent, "calendarEvents", "_calendar_events", "calendar_events", "calendar event",
                     "calendar events", AppTabPermissionKey::calendar);
THALVORN_RECORD_KIND(AccountMember, "accountMembers", "_members", "account_members", "member", "members",
                     AppTabPermissionKey::admin);
THALVORN_RECORD_KIND(ISMCheckDefinition, "ismCheckDefinitions", "_ism_checks", "ism_check_definitions",
                     "ISM check definition", "ISM check definitions", AppTabPermissionKey::ism);
THALVORN_RECORD_KIND(ConflictNote, "conflicts", "_conflicts", "conflict_notes", "conflict", "conflicts", std::nullopt);

#undef THALVORN_RECORD_KIND

/// All record kinds, in the order of the store's collections.
using RecordTypes =
    boost::mp11::mp_list<Vessel, MaintenanceTask, ServiceLog, ShipsLogEntry, VesselProfile, BunkeringRecord,
                         EquipmentItem, SubscriptionAccount, ShipDocument, ShipContact, VoyagePlan, SavedWaypoint,
                         YardPeriod, CrewBoardPost, ISMRecord, MarpolRecord, GMDSSTestLog, CrewMember, GuestProfile,
                         CalendarEvent, AccountMember, ISMCheckDefinition, ConflictNote>;

/// A record of any kind.
using AnyRecord = boost::mp11::mp_rename<RecordTypes, std::variant>;

/// Calls `visit(std::type_identity<T>)` for every record kind in order.
template <class Visitor>
void forEachKind(Visitor&& visit) {
  boost::mp11::mp_for_each<boost::mp11::mp_transform<std::type_identity, RecordTypes>>(visit);
}

/// A record that hangs on a vessel, and which.
template <class T>
std::optional<Uuid> vesselOf(const T& record) {
  if constexpr (requires { record.vesselID; }) {
    return record.vesselID;
  } else {
    return std::nullopt;
  }
}

/// What a person calls the record: its title or name; empty when it has none.
template <class T>
std::string recordName(const T& record) {
  // A guest's title is a form of address, so a person's names go first.
  if constexpr (requires { record.firstName; }) {
    const bool both = !record.firstName.empty() && !record.lastName.empty();
    return record.firstName + (both ? " " : "") + record.lastName;
  } else if constexpr (requires { record.title; }) {
    return record.title;
  } else if constexpr (requires { record.taskTitle; }) {
    return record.taskTitle;
  } else if constexpr (requires { record.checkTitle; }) {
    return record.checkTitle;
  } else if constexpr (requires { record.planName; }) {
    return record.planName;
  } else if constexpr (requires { record.component; }) {
    return record.component;
  } else if constexpr (requires { record.serviceName; }) {
    return record.serviceName;
  } else if constexpr (requires { record.name; }) {
    return record.name;
  } else {
    return {};
  }
}

/// The same, and of a record without a name its day, e.g. "14 Jan 2026": together with the kind a person knows which
/// one is meant. Empty when it has neither.
template <class T>
std::string recordNameOrDay(const T& record, const Calendar& calendar) {
  std::string name = recordName(record);
  if (!name.empty()) return name;
  const auto day = [&](Timestamp time) { return formatDate(calendar.date(time)); };
  if constexpr (requires { day(record.date); }) {
    return day(record.date);
  } else if constexpr (requires { day(record.completedDate); }) {
    return day(record.completedDate);
  } else if constexpr (requires { day(record.createdAt); }) {
    return day(record.createdAt);
  } else {
    return {};
  }
}

/// The record kinds whose JSON form leaves fields out keep those in a side entry.
template <class T>
concept HasExtraFields = requires { JsonForm<T>::extra; };

}  // namespace thalvorn
