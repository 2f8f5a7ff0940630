#include "store/edit.h"

namespace thalvorn {
namespace {

template <class T>
bool hasInitialExtras(const T& record) {
  static const T initial{};
  FieldSet extra{};
  for (const std::string_view name : JsonForm<T>::extra) extra |= fieldSetOf<T>({name});
  return (changedFields(initial, record) & extra) == FieldSet{};
}

template <class T>
void appendInverse(Edit& out, const T* before, const T* after, const std::optional<AnyRecord>& now) {
  const T* current = now ? std::get_if<T>(&*now) : nullptr;
  if (before && after) {
    if (!current) return;
    T restored = *current;
    copyFields(*before, restored, changedFields(*before, *after) & ~changedFields(*after, *current));
    if (!(restored == *current)) out.replace(*current, std::move(restored));
  } else if (before) {
    if (!current) out.add(*before);
  } else if (current) {
    out.remove(*current);
  }
}

}  // namespace

template <class T>
std::string extraJson(const T& record) {
  if constexpr (HasExtraFields<T>) {
    return hasInitialExtras(record) ? std::string() : toJson(record, JsonFields::extra);
  } else {
    return {};
  }
}

template std::string extraJson<Vessel>(const Vessel&);
template std::string extraJson<MaintenanceTask>(const MaintenanceTask&);
template std::string extraJson<ServiceLog>(const ServiceLog&);

void appendChanges(std::vector<EntryChange>& out, std::string_view suffix, const Uuid& id, StoredForm before,
                   StoredForm after, bool sent) {
  if (before.own != after.own)
    out.push_back({std::string(suffix), id, std::move(before.own), std::move(after.own), sent});
  if (before.extra != after.extra)
    out.push_back({std::string(suffix) + "_extra", id, std::move(before.extra), std::move(after.extra), sent});
}

Uuid RecordChange::id() const {
  return std::visit([](const auto& record) { return record.id; }, either());
}

std::vector<EntryChange> entryChanges(const Edit& edit) {
  std::vector<EntryChange> entries;
  for (const RecordChange& change : edit.changes) {
    std::visit(
        [&]<class T>(const T&) {
          const auto form = [](const std::optional<AnyRecord>& side) {
            return side ? storedForm(std::get<T>(*side)) : StoredForm{};
          };
          appendChanges(entries, RecordKind<T>::facts.suffix, change.id(), form(change.before), form(change.after));
        },
        change.either());
  }
  for (EntryChange& entry : entries) entry.revived = edit.takesBack && entry.before.empty();
  return entries;
}

Edit inverseOf(const Edit& edit, const std::function<std::optional<AnyRecord>(const AnyRecord&)>& current) {
  Edit inverse;
  inverse.label = edit.label;
  inverse.takesBack = true;
  for (auto change = edit.changes.rbegin(); change != edit.changes.rend(); ++change) {
    std::visit(
        [&]<class T>(const T&) {
          appendInverse<T>(inverse, change->before ? std::get_if<T>(&*change->before) : nullptr,
                           change->after ? std::get_if<T>(&*change->after) : nullptr, current(change->either()));
        },
        change->either());
  }
  return inverse;
}

}  // namespace thalvorn
