#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/enums.h"
#include "base/fields.h"
#include "base/json.h"
#include "base/timestamp.h"
#include "base/uuid.h"

namespace thalvorn {

enum class Department : std::uint8_t { all, deck, interior, engineering, galley, bridge };

template <>
struct EnumTexts<Department> {
  static constexpr std::array<EnumText, 6> table{{{"all", "All"},
                                                  {"deck", "Deck"},
                                                  {"interior", "Interior"},
                                                  {"engineering", "Engineering"},
                                                  {"galley", "Galley"},
                                                  {"bridge", "Bridge"}}};
};

enum class PostType : std::uint8_t {
  announcement,
  agenda,
  todo,
  provisioning,
  watchNote,
  safetyNotice,
  dockingNote,
  guestRequest,
  checklist,
  birthday
};

template <>
struct EnumTexts<PostType> {
  static constexpr std::array<EnumText, 10> table{{{"announcement", "Announcement"},
                                                   {"agenda", "Agenda"},
                                                   {"todo", "To-do"},
                                                   {"provisioning", "Provisioning"},
                                                   {"watchNote", "Watch note"},
                                                   {"safetyNotice", "Safety notice"},
                                                   {"dockingNote", "Docking note"},
                                                   {"guestRequest", "Guest request"},
                                                   {"checklist", "Checklist"},
                                                   {"birthday", "Birthday / Event"}}};
};

enum class PostPriority : std::uint8_t { normal, important, urgent };

template <>
struct EnumTexts<PostPriority> {
  static constexpr std::array<EnumText, 3> table{
      {{"normal", "Normal"}, {"important", "Important"}, {"urgent", "Urgent"}}};
};

/// One notice on the crew board, which all vessels of the account share.
struct CrewBoardPost {
  Uuid id;
  std::string userID;  ///< of the author
  std::string authorName;
  Choice<PostType> type;
  Choice<Department> department;
  Choice<PostPriority> priority;
  std::string title;
  std::string body;
  bool isPinned = false;
  std::optional<Timestamp> expiresAt;
  bool requiresAcknowledgment = false;
  std::vector<std::string> photoPaths;
  std::vector<std::string> documentPaths;
  Timestamp createdAt;
  Timestamp updatedAt;
  std::vector<std::string> acknowledgments;  ///< user ids of those who have acknowledged

  friend bool operator==(const CrewBoardPost&, const CrewBoardPost&) = default;
};
BOOST_DESCRIBE_STRUCT(CrewBoardPost, (),
                      (id, userID, authorName, type, department, priority, title, body, isPinned, expiresAt,
                       requiresAcknowledgment, photoPaths, documentPaths, createdAt, updatedAt, acknowledgments))
THALVORN_JSON_RECORD(CrewBoardPost);

template <>
struct RecordFacts<CrewBoardPost> {
  static constexpr std::array facts{
      FieldFacts{.name = "authorName", .label = "Author"},
      FieldFacts{.name = "type", .label = "Type"},
      FieldFacts{.name = "department", .label = "Department"},
      FieldFacts{.name = "priority", .label = "Priority"},
      FieldFacts{.name = "title", .label = "Title", .placeholder = "Brief headline...", .required = true},
      FieldFacts{.name = "body", .label = "Message", .entry = FieldEntry::multiline},
      FieldFacts{.name = "isPinned", .label = "Pin to top"},
      FieldFacts{.name = "expiresAt", .label = "Expires"},
      FieldFacts{.name = "requiresAcknowledgment", .label = "Require acknowledgment"},
      FieldFacts{.name = "photoPaths", .label = "Photos"},
      FieldFacts{.name = "documentPaths", .label = "Documents"}};
};
static_assert(factsNameFields<CrewBoardPost>());

}  // namespace thalvorn
