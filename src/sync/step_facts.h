#pragma once

#include <string_view>

#include "store/record_kind.h"

namespace thalvorn {

/// What one table step says and asks beyond what the record kind knows.
struct StepFacts {
  std::string_view label = {};    ///< in the log, when the step takes too long
  std::string_view uploads = {};  ///< before the count of records that go up
  std::string_view summary = {};  ///< before the count of records that came down
  std::string_view failure = {};  ///< before the name of a record that the server refused; empty: not told one by one
};

template <class T>
inline constexpr StepFacts stepFacts{};

template <>
inline constexpr StepFacts stepFacts<Vessel>{"vessels", "⬆️ syncVessels: uploading ", "⚓️ vessels: "};
template <>
inline constexpr StepFacts stepFacts<VesselProfile>{"vesselprofiles", "🔄 vessel profiles: ", "🛥 vessel profiles: "};
template <>
inline constexpr StepFacts stepFacts<MaintenanceTask>{"tasks", "⬆️ syncTasks: uploading ", "🔧 tasks: "};
template <>
inline constexpr StepFacts stepFacts<ServiceLog>{"servicelogs", "⬆️ syncServiceLogs: uploading ", "📒 service logs: "};
template <>
inline constexpr StepFacts stepFacts<ShipsLogEntry>{"shipslog", "⬆️ syncShipsLog: uploading ", "📓 ship's log: "};
template <>
inline constexpr StepFacts stepFacts<BunkeringRecord>{"bunkering", "⬆️ syncBunkering: uploading ", "⛽️ bunkering: "};
template <>
inline constexpr StepFacts stepFacts<ShipDocument>{"documents", "⬆️ syncDocuments: uploading ", "📄 documents: "};
template <>
inline constexpr StepFacts stepFacts<ShipContact>{"contacts", "⬆️ syncContacts: uploading ", "📇 contacts: "};
template <>
inline constexpr StepFacts stepFacts<EquipmentItem>{"equipment", "⬆️ syncEquipment: uploading ", "🔩 equipment: "};
template <>
inline constexpr StepFacts stepFacts<VoyagePlan>{"voyageplans", "⬆️ syncVoyagePlans: uploading ",
                                                 "🗺 syncVoyagePlans: local=", "❌ voyage upsert "};
template <>
inline constexpr StepFacts stepFacts<SavedWaypoint>{"waypoints", "⬆️ syncSavedWaypoints: uploading ",
                                                    "🧭 saved waypoints: pulled "};
template <>
inline constexpr StepFacts stepFacts<CrewMember>{"crew", "⬆️ syncCrew: uploading ",
                                                 "🧑✈️ syncCrew: local=", "❌ crew upsert "};
template <>
inline constexpr StepFacts stepFacts<GuestProfile>{"guests", "⬆️ syncGuests: uploading ",
                                                   "🧳 syncGuests: local=", "❌ guest upsert "};
template <>
inline constexpr StepFacts stepFacts<CalendarEvent>{"calevents", "⬆️ syncCalendarEvents: uploading ",
                                                    "📅 calendar events: "};
template <>
inline constexpr StepFacts stepFacts<ISMRecord>{"ismrecords", "⬆️ syncISMRecords: uploading ", "🛟 ism records: "};
template <>
inline constexpr StepFacts stepFacts<MarpolRecord>{"marpol", "⬆️ syncMarpol: uploading ", "🛢 marpol records: "};
template <>
inline constexpr StepFacts stepFacts<GMDSSTestLog>{"gmdss", "⬆️ syncGMDSS: uploading ", "📻 gmdss test logs: "};
template <>
inline constexpr StepFacts stepFacts<ISMCheckDefinition>{"ismdefs", "⬆️ syncISMCheckDefinitions: uploading ",
                                                         "📋 ism check definitions: "};
template <>
inline constexpr StepFacts stepFacts<SubscriptionAccount>{"subscriptions", "⬆️ syncSubscriptions: uploading ",
                                                          "💳 subscriptions: "};
template <>
inline constexpr StepFacts stepFacts<CrewBoardPost>{"crewboard", "⬆️ syncCrewBoard: uploading ", "📌 crew board: "};
template <>
inline constexpr StepFacts stepFacts<YardPeriod>{"yard", "⬆️ syncYard: uploading ", "🏗 Yard sync: "};
template <>
inline constexpr StepFacts stepFacts<ConflictNote>{"conflicts", "⬆️ syncConflicts: uploading ", "⚖️ conflicts: "};

}  // namespace thalvorn
