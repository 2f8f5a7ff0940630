// list, put and delete: records of every kind in their own form.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <QUtf8StringView>
#include <type_traits>
#include <unordered_map>

#include "cli/commands.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "cli/text_table.h"
#include "cli/values.h"

namespace thalvorn::cli {
namespace {

/// The fields that are printed and read: the record's own form; of a task also those that the form leaves out.
template <class T>
constexpr JsonFields shownFields = std::is_same_v<T, MaintenanceTask> ? JsonFields::full : JsonFields::own;

template <class T>
constexpr bool belongsToVessel = requires(const T& record) { record.vesselID; };

CommandResult unknownCollection(std::string_view name) {
  std::vector<std::string_view> names;
  forEachKind([&]<class T>(std::type_identity<T>) { names.push_back(RecordKind<T>::facts.collection); });
  return misused(fmt::format("There is no collection “{}”; the collections are {}.", name, fmt::join(names, ", ")));
}

/// Calls `visit(std::type_identity<T>)` for the kind whose collection has this name; false when there is none.
template <class Visitor>
bool withKind(std::string_view collection, Visitor&& visit) {
  bool found = false;
  forEachKind([&]<class T>(std::type_identity<T> kind) {
    if (found || !equalIgnoringCase(collection, RecordKind<T>::facts.collection)) return;
    found = true;
    visit(kind);
  });
  return found;
}

template <class T>
CommandResult list(const AppViewModel& store, const Arguments& arguments) {
  if (auto refusal = closed<T>(store)) return *std::move(refusal);
  if (arguments.has("--vessel") && !belongsToVessel<T> && !std::is_same_v<T, Vessel>)
    return misused(fmt::format("The {} belong to no vessel.", RecordKind<T>::facts.plural));
  const auto vessel = vesselOption(store, arguments);
  if (!vessel) return vessel.error();
  std::vector<std::string> records;
  for (const T& record : store.collection<T>().records()) {
    if (*vessel != nullptr) {
      if constexpr (std::is_same_v<T, Vessel>) {
        if (record.id != (*vessel)->id) continue;
      } else if (vesselOf(record) != (*vessel)->id) {
        continue;
      }
    }
    records.push_back(toJson(record, shownFields<T>));
  }
  return done(jsonLines(records));
}

// Put.

/// The records of standard input as pieces of JSON, and whether they stood in a list.
struct Pieces {
  std::vector<RawElement> elements;
  bool inList = false;
};

/// `wrapped` is where a single record gets the brackets that make it a list; the pieces are views into it or `input`.
std::expected<Pieces, std::string> splitInput(std::string_view input, std::string& wrapped) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (input.starts_with(byteOrderMark)) input.remove_prefix(byteOrderMark.size());
  if (!QUtf8StringView(input.data(), static_cast<qsizetype>(input.size())).isValidUtf8())
    return std::unexpected("Standard input is not UTF-8 text.");
  const std::size_t start = input.find_first_not_of(" \t\r\n");
  if (start == std::string_view::npos)
    return std::unexpected("Standard input is empty; give one record or a list of records as JSON.");
  if (input[start] != '[' && input[start] != '{')
    return std::unexpected("Standard input is not JSON; give one record {…} or a list of records […].");
  Pieces pieces{.elements = {}, .inList = input[start] == '['};
  if (!pieces.inList) wrapped = fmt::format("[{}]", input);
  auto elements = splitJsonList(pieces.inList ? input : std::string_view(wrapped));
  if (!elements) return std::unexpected(fmt::format("Standard input {}.", elements.error().message()));
  if (!pieces.inList && elements->size() != 1)
    return std::unexpected("Standard input holds several records; write them as a list […].");
  pieces.elements = std::move(*elements);
  return pieces;
}

/// What a record refers to must be there.
template <class T>
std::optional<JsonError> vesselProblem(const AppViewModel& store, const T& record) {
  if constexpr (belongsToVessel<T>) {
    const std::optional<Uuid> vesselID = record.vesselID;
    constexpr bool optional = requires { JsonForm<T>::vesselOptional; };
    constexpr const char* key = requires { JsonForm<T>::snakeCase; } ? "vessel_id" : "vesselID";
    if (!vesselID || (!optional && vesselID->isNil())) {
      if constexpr (optional) return std::nullopt;
      return JsonError{key, "is missing"};
    }
    if (store.vessels().find(*vesselID) == nullptr)
      return JsonError{key, fmt::format("there is no vessel {}", vesselID->toString())};
  }
  return std::nullopt;
}

/// A record as it shall be stored: what the text does not mention has its initial value, but fields outside the
/// record's own form keep what is stored.
template <class T>
std::expected<T, JsonError> readRecord(const AppViewModel& store, const RawElement& element) {
  T record{};
  if (const auto id = Uuid::parse(element.id)) {
    const T* stored = store.collection<T>().find(*id);
    if constexpr (HasExtraFields<T>) {
      if (stored != nullptr)
        for (const std::string_view name : JsonForm<T>::extra) copyFields(*stored, record, fieldSetOf<T>({name}));
    }
  }
  if (auto read = updateFromJson(record, element.bytes, shownFields<T>); !read) return std::unexpected(read.error());
  if (record.id.isNil()) record.id = Uuid::random();
  if (auto problem = vesselProblem(store, record)) return std::unexpected(std::move(*problem));
  return record;
}

/// What a form would not let a person enter in a field: a number out of its range, a choice that is not known. Empty
/// when all is well.
template <class T, class V>
std::string oddity(std::string_view field, const V& value) {
  if constexpr (requires { value.has_value(); }) {
    return value ? oddity<T>(field, *value) : std::string();
  } else if constexpr (isChoice<V>) {
    if (!value.isKnown()) return fmt::format("{}: “{}” is not known here", field, printable(value.raw()));
  } else if constexpr (HasFacts<T> && std::is_arithmetic_v<V> && !std::is_same_v<V, bool>) {
    const FieldFacts* facts = factsOf<T>(field);
    const auto number = static_cast<double>(value);
    if (facts != nullptr && (number < facts->minimum || number > facts->maximum))
      return fmt::format("{}: {} is not between {} and {}", field, value, facts->minimum, facts->maximum);
  }
  return {};
}

/// Tells of odd values, which are stored all the same: a newer program may have written them, and what is wrong with an
/// old record must not keep it out.
class Oddities {
 public:
  template <class T>
  void look(const T& record, const std::string& place) {
    forEachField(record, [&](std::string_view field, const auto& value) {
      const std::string found = oddity<T>(field, value);
      if (!found.empty() && ++count_ <= kMostTold) notices_ += fmt::format("{}{}; stored as it is.\n", place, found);
    });
  }

  std::string take() {
    if (count_ > kMostTold) notices_ += fmt::format("… and {} more.\n", count_ - kMostTold);
    return std::move(notices_);
  }

 private:
  static constexpr std::size_t kMostTold = 20;
  std::size_t count_ = 0;
  std::string notices_;
};

template <class T>
struct Reading {
  Edit edit;
  std::vector<Uuid> ids;
  std::string notices;
};

template <class T>
std::expected<Reading<T>, std::string> readAll(const AppViewModel& store, const Pieces& pieces) {
  Reading<T> reading;
  Oddities oddities;
  std::unordered_map<Uuid, std::size_t> places;
  for (std::size_t i = 0; i < pieces.elements.size(); ++i) {
    const std::string place = pieces.inList ? fmt::format("Record {} of {}: ", i + 1, pieces.elements.size()) : "";
    auto record = readRecord<T>(store, pieces.elements[i]);
    if (!record) return std::unexpected(fmt::format("{}{}. Nothing was stored.", place, record.error().message()));
    const auto [earlier, fresh] = places.emplace(record->id, i);
    if (!fresh)
      return std::unexpected(
          fmt::format("{}id: is that of record {} too. Nothing was stored.", place, earlier->second + 1));
    oddities.look(*record, place);
    reading.ids.push_back(record->id);
    if (const T* stored = store.collection<T>().find(record->id)) {
      reading.edit.replace(*stored, std::move(*record));
    } else {
      reading.edit.add(std::move(*record));
    }
  }
  const KindFacts& facts = RecordKind<T>::facts;
  reading.edit.label = counted(reading.ids.size(), facts.singular, facts.plural) + " put";
  reading.notices = oddities.take();
  return reading;
}

template <class T>
QCoro::Task<CommandResult> put(CommandContext context) {
  std::string wrapped;
  const auto pieces = splitInput(*context.input, wrapped);
  if (!pieces) co_return refused(pieces.error());
  auto reading = readAll<T>(*context.store, *pieces);
  if (!reading) co_return refused(reading.error());
  const auto saved = co_await whenSaved(context, context.store->apply(std::move(reading->edit)));
  if (!saved) co_return saved.error();
  std::vector<std::string> stored;
  for (const Uuid& id : reading->ids)
    if (const T* record = context.store->collection<T>().find(id)) stored.push_back(toJson(*record, shownFields<T>));
  const bool asList = pieces->inList || stored.empty();
  co_return CommandResult{kDone, asList ? jsonLines(stored) : stored.front() + "\n", std::move(reading->notices)};
}

// Delete.

template <class T>
QCoro::Task<CommandResult> remove(CommandContext context, Uuid id) {
  const KindFacts& facts = RecordKind<T>::facts;
  AppViewModel& store = *context.store;
  if (store.collection<T>().find(id) == nullptr)
    co_return refused(fmt::format("There is no {} {}.", facts.singular, id.toString()));
  std::string text = fmt::format("Deleted the {} {}", facts.singular, id.toString());
  Saving saving;
  if constexpr (std::is_same_v<T, Vessel>) {
    const std::vector<std::string> withIt = store.whatHangsOn(id);
    if (!withIt.empty()) text += fmt::format(" and what hung on it: {}", fmt::join(withIt, ", "));
    saving = store.removeVessel(id);
  } else {
    saving = store.remove<T>(id);
  }
  const auto saved = co_await whenSaved(context, saving);
  if (!saved) co_return saved.error();
  if (context.json) co_return done(JsonObject().text("deleted", id.toString()).take() + "\n");
  co_return done(text + ".\n");
}

}  // namespace

QCoro::Task<CommandResult> listRecords(CommandContext context, Arguments arguments) {
  CommandResult result;
  const std::string& name = arguments.operands.front();
  const bool known =
      withKind(name, [&]<class T>(std::type_identity<T>) { result = list<T>(*context.store, arguments); });
  co_return known ? result : unknownCollection(name);
}

QCoro::Task<CommandResult> putRecords(CommandContext context, Arguments arguments) {
  using Put = QCoro::Task<CommandResult> (*)(CommandContext);
  Put chosen = nullptr;
  const std::string& name = arguments.operands.front();
  if (!withKind(name, [&]<class T>(std::type_identity<T>) { chosen = &put<T>; })) co_return unknownCollection(name);
  co_return co_await chosen(context);
}

QCoro::Task<CommandResult> deleteRecord(CommandContext context, Arguments arguments) {
  using Remove = QCoro::Task<CommandResult> (*)(CommandContext, Uuid);
  Remove chosen = nullptr;
  const std::string& name = arguments.operands.front();
  if (!withKind(name, [&]<class T>(std::type_identity<T>) { chosen = &remove<T>; })) co_return unknownCollection(name);
  const auto id = Uuid::parse(arguments.operands[1]);
  if (!id) co_return refused(fmt::format("“{}” is not an identifier; list shows the records’.", arguments.operands[1]));
  co_return co_await chosen(context, *id);
}

}  // namespace thalvorn::cli
