#pragma once

#include <boost/mp11.hpp>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backend/account_rows.h"
#include "backend/compliance_rows.h"
#include "backend/core_rows.h"
#include "backend/operations_rows.h"
#include "backend/records_rows.h"
#include "backend/table_query.h"
#include "backend/yard_rows.h"
#include "compliance/account_member.h"
#include "compliance/crew_board_post.h"
#include "compliance/crew_member.h"
#include "compliance/gmdss_test_log.h"
#include "compliance/ism_check.h"
#include "compliance/ism_record.h"
#include "compliance/marpol_record.h"
#include "core/maintenance_task.h"
#include "core/service_log.h"
#include "core/vessel_order.h"
#include "core/vessel_profile.h"
#include "operations/bunkering_record.h"
#include "operations/saved_waypoint.h"
#include "operations/ships_log_entry.h"
#include "operations/voyage_plan.h"
#include "records/calendar_event.h"
#include "records/equipment_item.h"
#include "records/guest_profile.h"
#include "records/ship_contact.h"
#include "records/ship_document.h"
#include "records/subscription_account.h"
#include "records/yard_period.h"

namespace thalvorn {

/// By what a download of a table is narrowed down.
enum class RowScope : std::uint8_t { account, vessel };

/// How the rows of a kind are asked for.
struct RowFacts {
  std::string_view table;
  std::string_view order = {};  ///< of a download; empty where the table has no order of its own
  RowScope scope = RowScope::account;
};

/// What row a record travels in, and from where. Fields and columns of the same name belong together ("vesselID" and
/// "vessel_id"); a column whose name ends in "_json", and any text column that a list belongs to, holds the field's
/// JSON form. Where a kind differs it says so here:
///   static constexpr std::string_view whole       the column that holds the whole record
///   static constexpr std::array<…> elsewhere      fields that no row of this table holds: another table's, or bytes
///   that
///                                                 move to file storage first
///   static void finishRow(record, row), finishRecord(row, record)   what remains to be done after the fields
template <class T>
struct RowKind;

#define THALVORN_ROW_KIND(Type, RowType, ...)     \
  template <>                                     \
  struct RowKind<Type> {                          \
    using Row = RowType;                          \
    static constexpr RowFacts facts{__VA_ARGS__}; \
  }

THALVORN_ROW_KIND(ServiceLog, SBServiceLogRow, "service_logs", "completed_date.desc");
THALVORN_ROW_KIND(ShipsLogEntry, SBShipsLogRow, "ships_log");
THALVORN_ROW_KIND(BunkeringRecord, SBBunkeringRow, "bunkering_records");
THALVORN_ROW_KIND(ShipContact, SBContactRow, "ship_contacts");
THALVORN_ROW_KIND(EquipmentItem, SBEquipmentRow, "equipment");
THALVORN_ROW_KIND(SavedWaypoint, SBSavedWaypointRow, "saved_waypoints", "name.asc");
THALVORN_ROW_KIND(CalendarEvent, SBCalendarEventRow, "calendar_events", "start_date.asc");
THALVORN_ROW_KIND(ISMRecord, SBISMRecordRow, "ism_records");
THALVORN_ROW_KIND(ISMCheckDefinition, SBISMCheckDefinitionRow, "ism_check_definitions");
THALVORN_ROW_KIND(MarpolRecord, SBMarpolRecordRow, "marpol_records");
THALVORN_ROW_KIND(GMDSSTestLog, SBGMDSSTestLogRow, "gmdss_test_logs", "date.desc");
THALVORN_ROW_KIND(WorkOrder, SBWorkOrderRow, "work_orders", "", RowScope::vessel);
THALVORN_ROW_KIND(PunchListItem, SBPunchListItemRow, "punch_list_items", "", RowScope::vessel);
THALVORN_ROW_KIND(YardLogEntry, SBYardLogEntryRow, "yard_log_entries", "", RowScope::vessel);
THALVORN_ROW_KIND(SubscriptionAccount, SBSubscriptionAccountRow, "subscription_accounts");
THALVORN_ROW_KIND(AccountMember, SBAccountMemberRow, "account_members");
#undef THALVORN_ROW_KIND

/// A vessel that nobody has put in order has no `sort_order`.
template <>
struct RowKind<Vessel> {
  using Row = SBVesselRow;
  static constexpr RowFacts facts{"vessels", "sort_order.asc,name.asc"};
  static void finishRow(const Vessel& vessel, Row& row) {
    if (vessel.sortOrder == unordered) row.sortOrder.reset();
  }
  static void finishRecord(const Row& row, Vessel& vessel) {
    if (!row.sortOrder) vessel.sortOrder = unordered;
  }
};

template <>
struct RowKind<VesselProfile> {
  using Row = SBVesselProfileRow;
  static constexpr RowFacts facts{"vessel_profiles"};
  static constexpr std::string_view whole = "profileJson";
};

template <>
struct RowKind<VoyagePlan> {
  using Row = SBVoyagePlanRow;
  static constexpr RowFacts facts{"voyage_plans", "date_created.desc"};
  static constexpr std::string_view whole = "planJson";
};

template <>
struct RowKind<MaintenanceTask> {
  using Row = SBTaskRow;
  static constexpr RowFacts facts{"maintenance_tasks"};
  static constexpr std::array<std::string_view, 1> elsewhere{"photoData"};
};

template <>
struct RowKind<ShipDocument> {
  using Row = SBDocumentRow;
  static constexpr RowFacts facts{"ship_documents"};
  static constexpr std::array<std::string_view, 1> elsewhere{"fileData"};
};

template <>
struct RowKind<GuestProfile> {
  using Row = SBGuestProfileRow;
  static constexpr RowFacts facts{"guest_profiles"};
  static constexpr std::array<std::string_view, 1> elsewhere{"photoData"};
};

/// The personal particulars travel as one document, their enumerations as plain text.
template <>
struct RowKind<CrewMember> {
  using Row = SBCrewMemberRow;
  static constexpr RowFacts facts{"crew_members"};
  using Part = CrewMemberExtended;
  static constexpr std::string_view partColumn = "extendedJson";
  static Part partOf(const CrewMember& member) { return extendedOf(member); }
  static void applyPart(const Part& part, CrewMember& member) { applyExtended(part, member); }
};

/// Acknowledgments have a table of their own.
template <>
struct RowKind<CrewBoardPost> {
  using Row = SBCrewBoardPostRow;
  static constexpr RowFacts facts{"crew_board_posts"};
  static constexpr std::array<std::string_view, 1> elsewhere{"acknowledgments"};
};

/// Work orders, punch list and log entries have tables of their own.
template <>
struct RowKind<YardPeriod> {
  using Row = SBYardPeriodRow;
  static constexpr RowFacts facts{"yard_periods", "", RowScope::vessel};
  static constexpr std::array<std::string_view, 3> elsewhere{"workOrders", "punchList", "logEntries"};
};

/// Every kind of record that travels as a row.
using RowRecordTypes =
    boost::mp11::mp_list<Vessel, VesselProfile, MaintenanceTask, ServiceLog, ShipsLogEntry, BunkeringRecord,
                         ShipDocument, ShipContact, EquipmentItem, VoyagePlan, SavedWaypoint, CrewMember, GuestProfile,
                         CalendarEvent, ISMRecord, ISMCheckDefinition, MarpolRecord, GMDSSTestLog, YardPeriod,
                         WorkOrder, PunchListItem, YardLogEntry, SubscriptionAccount, AccountMember, CrewBoardPost>;

template <class T>
using RowOf = typename RowKind<T>::Row;

/// Who writes a row, for which account, and what it is based on.
struct RowContext {
  Uuid userID;
  Uuid accountID;
  Timestamp updatedAt;                      ///< of the edit; a record with a time of its own keeps that
  std::optional<std::int64_t> seenVersion;  ///< `serverVersion` of the row that the edit was merged with
};

/// A record made from a row, with the documents in it that could not be read. Such a field has the value of the record
/// known before, or else its initial one; writing the record back would lose what the server holds there.
template <class T>
struct FromRow {
  T record;
  std::vector<JsonError> unreadable;
};

/// The row of a record. Keys that a newer program has put into the documents of `stored`, the row as the server has it,
/// are kept. Texts are made such that a database takes them: no NUL, valid UTF-8.
template <class T>
RowOf<T> rowFromRecord(const T& record, const RowContext& context, const RowOf<T>* stored = nullptr);

/// The record of a row. What no column and no readable `extraJson` tells keeps the value it has in `known`, the record
/// as it stands on this computer. Fails when the column that holds the whole record cannot be read.
template <class T>
std::expected<FromRow<T>, JsonError> recordFromRow(const RowOf<T>& row, const T* known = nullptr);

/// Whether two rows hold the same in the column of this name, e.g. "plan_json".
template <class Row>
bool sameColumn(const Row& one, const Row& other, std::string_view column);
template <class Row>
void copyColumn(const Row& from, Row& to, std::string_view column);

/// Which columns an upload holds: those that every server has, or our own schema's too.
enum class RowColumns : std::uint8_t { standard, all };

/// The body of an upload: a JSON list whose objects all have the same keys. Read rows with
/// `listFromJson<Row>(json, JsonFields::full)`.
template <class Row>
std::string rowsToJson(const std::vector<Row>& rows, RowColumns columns);

/// The rows of a kind that belong to `owner`, an account or a vessel as the kind is scoped.
template <class T>
TableQuery rowsOf(const Uuid& owner) {
  constexpr RowFacts facts = RowKind<T>::facts;
  TableQuery query(facts.table);
  query.eq(facts.scope == RowScope::vessel ? "vessel_id" : "account_id", owner);
  return query;
}

}  // namespace thalvorn
