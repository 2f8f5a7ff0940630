#include "store/edit.h"

namespace thalvorn {
namespace {

template <class T>
bool hasInitialExtras(const T& record) {
  FieldSet extra{};
  for (const std::string_view name : JsonForm<T>::extra) extra |= fieldSetOf<T>({name});
  return (changedFields(T{}, record) & extra) == FieldSet{};
}

template <class T>
void appendChanges(std::vector<EntryChange>& out, const T* before, const T* after) {
  const Uuid id = (after ? after : before)->id;
  std::string oldOwn = before ? toJson(*before) : std::string();
  std::string newOwn = after ? toJson(*after) : std::string();
  if (oldOwn != newOwn)
    out.push_back({std::string(RecordKind<T>::facts.suffix), id, std::move(oldOwn), std::move(newOwn)});
  if constexpr (HasExtraFields<T>) {
    std::string oldExtra = before ? extraJson(*before) : std::string();
    std::string newExtra = after ? extraJson(*after) : std::string();
    if (oldExtra != newExtra)
      out.push_back(
          {std::string(RecordKind<T>::facts.suffix) + "_extra", id, std::move(oldExtra), std::move(newExtra)});
  }
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

Uuid RecordChange::id() const {
  return std::visit([](const auto& record) { return record.id; }, either());
}

std::vector<EntryChange> entryChanges(const Edit& edit) {
  std::vector<EntryChange> entries;
  for (const RecordChange& change : edit.changes) {
    std::visit(
        [&]<class T>(const T&) {
          appendChanges<T>(entries, change.before ? std::get_if<T>(&*change.before) : nullptr,
                           change.after ? std::get_if<T>(&*change.after) : nullptr);
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
