#include "app/fleet/vessel_list.h"

#include <QQmlEngine>
#include <algorithm>

#include "app/maintenance/task_texts.h"
#include "app/save_outcome.h"
#include "base/number_format.h"
#include "base/search_text.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

/// The particulars as a page shows them, in sections.
struct Section {
  const char16_t* title;
  std::vector<std::string_view> fields;
};

const std::vector<Section>& sections() {
  static const std::vector<Section> all{
      {u"Registry",
       {"flag", "portOfRegistry", "officialNumber", "imoNumber", "callSign", "mmsi", "classSociety", "hullNumber"}},
      {u"Dimensions", {"grossTonnage", "netTonnage", "beamFeet", "draftFeet", "airDraftFeet", "hullMaterial"}},
      {u"Build and machinery",
       {"builder", "yearBuilt", "engineMake", "generatorMake", "fuelCapacityGallons", "waterCapacityGallons",
        "cruisingSpeedKnots"}},
      {u"People", {"owner", "manager", "managerPhone", "designatedPerson", "maxGuests", "safeManning"}},
      {u"Aboard", {"homePort", "timeZone", "currency", "formerNames", "notes"}}};
  return all;
}

std::optional<Uuid> idOf(const QString& text) { return Uuid::parse(text.toStdString()); }

}  // namespace

VesselList::VesselList(AppViewModel& store, const AttachmentStore& attachments, AppController& app,
                       const Format& format, QObject* parent)
    : QAbstractListModel(parent), store_(store), attachments_(attachments), app_(app), format_(format) {
  recount_.setSingleShot(true);
  recount_.setInterval(0ms);
  connect(&recount_, &QTimer::timeout, this, &VesselList::refreshCounts);
  const CollectionEvents& vessels = store_.vessels().events();
  connect(&vessels, &CollectionEvents::reset, this, &VesselList::read);
  connect(&vessels, &CollectionEvents::inserted, this, &VesselList::read);
  connect(&vessels, &CollectionEvents::removed, this, &VesselList::read);
  connect(&vessels, &CollectionEvents::changed, this, &VesselList::read);
  const auto recount = [this] { recount_.start(); };
  connect(&store_, &AppViewModel::edited, this, recount);
  connect(&store_, &AppViewModel::reloaded, this, recount);
  read();
}

void VesselList::read() {
  std::vector<Uuid> order;
  for (const Vessel* vessel : store_.vesselsInOrder()) order.push_back(vessel->id);
  if (order == order_) {
    if (count() > 0) Q_EMIT dataChanged(index(0), index(count() - 1));
    Q_EMIT changed();
    return;
  }
  beginResetModel();
  order_ = std::move(order);
  endResetModel();
  recount_.start();
  Q_EMIT countChanged();
  Q_EMIT changed();
}

void VesselList::refreshCounts() {
  counts_.clear();
  for (const MaintenanceTask& task : store_.tasks().records())
    if (!task.isCompleted) ++counts_[task.vesselID].tasks;
  for (const ServiceLog& log : store_.logs().records()) ++counts_[log.vesselID].services;
  if (count() > 0) Q_EMIT dataChanged(index(0), index(count() - 1), {tasksRole, servicesRole, photoRole, registryRole});
  Q_EMIT changed();
}

int VesselList::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QString VesselList::photoOf(const Uuid& vessel) const {
  const VesselProfile* profile = store_.profileOf(vessel);
  if (!profile || profile->photoPath.empty()) return {};
  const auto file = attachments_.absolute(profile->photoPath);
  return file ? QUrl::fromLocalFile(toQt(file->string())).toString() : QString();
}

QVariant VesselList::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= count()) return {};
  const Uuid& id = order_[static_cast<std::size_t>(index.row())];
  const Vessel* vessel = store_.vessels().find(id);
  if (!vessel) return {};
  switch (role) {
    case idRole:
      return idText(id);
    case nameRole:
      return toQt(vessel->name);
    case detailRole: {
      QStringList parts;
      if (!vessel->type.empty()) parts << toQt(vessel->type);
      if (vessel->lengthFeet > 0)
        parts << toQt(formatQuantity(vessel->lengthFeet, 1, format_.numbers())) + QStringLiteral(" ft");
      return parts.join(QStringLiteral(" · "));
    }
    case photoRole:
      return photoOf(id);
    case registryRole: {
      const VesselProfile* profile = store_.profileOf(id);
      QStringList parts;
      if (profile && !profile->flag.empty()) parts << toQt(profile->flag);
      if (profile && !profile->portOfRegistry.empty()) parts << toQt(profile->portOfRegistry);
      return parts.join(QStringLiteral(" · "));
    }
    case tasksRole: {
      const auto found = counts_.find(id);
      return found == counts_.end() ? 0 : found->second.tasks;
    }
    case servicesRole: {
      const auto found = counts_.find(id);
      return found == counts_.end() ? 0 : found->second.services;
    }
    case metersRole:
      return format_.hours(vessel->engineHours);
    default:
      return {};
  }
}

QHash<int, QByteArray> VesselList::roleNames() const {
  return {{idRole, "id"},
          {nameRole, "name"},
          {detailRole, "detail"},
          {photoRole, "photo"},
          {registryRole, "registry"},
          {tasksRole, "tasks"},
          {servicesRole, "services"},
          {metersRole, "meters"}};
}

int VesselList::rowOf(const QVariant& id) const {
  const auto read = idOf(id.toString());
  const auto found = read ? std::ranges::find(order_, *read) : order_.end();
  return found == order_.end() ? -1 : static_cast<int>(found - order_.begin());
}

// ---- order ----

void VesselList::moveTo(int from, int to) {
  if (from == to || from < 0 || to < 0 || from >= count() || to >= count()) return;
  if (!beginMoveRows({}, from, from, {}, to > from ? to + 1 : to)) return;
  const Uuid moved = order_[static_cast<std::size_t>(from)];
  order_.erase(order_.begin() + from);
  order_.insert(order_.begin() + to, moved);
  endMoveRows();
}

void VesselList::keepOrder() {
  const std::vector<Uuid> wanted = order_;
  if (const QString refusal = refusalOf(store_.reorderVessels(wanted)); !refusal.isEmpty()) {
    app_.toast(refusal, QStringLiteral("overdue"));
    read();
  }
}

void VesselList::shift(const QString& id, int places) {
  const int from = rowOf(id);
  const int to = from + places;
  if (from < 0 || to < 0 || to >= count()) return;
  moveTo(from, to);
  keepOrder();
}

// ---- one vessel ----

QObject* VesselList::sheet(const QString& id) {
  VesselAndProfile both;
  if (!id.isEmpty()) {
    const auto read = idOf(id);
    const Vessel* vessel = read ? store_.vessels().find(*read) : nullptr;
    if (!vessel) return nullptr;
    both = storedVessel(store_, *vessel);
  } else {
    both = newVessel(store_);
  }
  auto* made =
      new VesselSheet(store_, attachments_, std::move(both.vessel), std::move(both.profile), id.isEmpty(), format_);
  QQmlEngine::setObjectOwnership(made, QQmlEngine::JavaScriptOwnership);
  return made;
}

QVariantMap VesselList::describe(const QString& id) const {
  const auto read = idOf(id);
  const Vessel* vessel = read ? store_.vessels().find(*read) : nullptr;
  if (!vessel) return {};
  const auto fact = [](const QString& label, const QString& value) {
    return QVariantMap{{QStringLiteral("label"), label}, {QStringLiteral("value"), value}};
  };
  QVariantList list;
  QVariantList meters;
  for (const HourSource source : vessel->meters())
    meters.append(fact(toQt(meterLabel(source)), format_.hours(vessel->reading(source))));
  list.append(QVariantMap{{QStringLiteral("title"), QStringLiteral("Hour meters")}, {QStringLiteral("facts"), meters}});
  const VesselAndProfile both = storedVessel(store_, *vessel);
  const ProfileForm form(both.profile, format_, nullptr);
  for (const Section& section : sections()) {
    QVariantList facts;
    for (const std::string_view name : section.fields) {
      const QString field = toQt(name);
      QString value = form.text(field);
      if (value.isEmpty()) continue;
      const QVariantMap about = form.facts(field);
      if (const QString unit = about.value(QStringLiteral("unit")).toString(); !unit.isEmpty()) value += u' ' + unit;
      facts.append(fact(about.value(QStringLiteral("label")).toString(), value));
    }
    if (!facts.isEmpty())
      list.append(
          QVariantMap{{QStringLiteral("title"), QString::fromUtf16(section.title)}, {QStringLiteral("facts"), facts}});
  }
  return {{QStringLiteral("id"), id},
          {QStringLiteral("name"), toQt(vessel->name)},
          {QStringLiteral("notes"), toQt(vessel->notes)},
          {QStringLiteral("photo"), photoOf(vessel->id)},
          {QStringLiteral("sections"), list}};
}

QStringList VesselList::whatHangsOn(const QString& id) const {
  QStringList lines;
  if (const auto read = idOf(id)) {
    for (const std::string& line : store_.whatHangsOn(*read)) lines << toQt(line);
  }
  return lines;
}

bool VesselList::isNameOf(const QString& id, const QString& typed) const {
  const auto read = idOf(id);
  const Vessel* vessel = read ? store_.vessels().find(*read) : nullptr;
  return vessel && foldText(typed.trimmed().toStdString()) == foldText(toQt(vessel->name).trimmed().toStdString());
}

void VesselList::remove(const QString& id) {
  const auto read = idOf(id);
  if (!read) return;
  if (const QString refusal = refusalOf(store_.removeVessel(*read)); !refusal.isEmpty())
    app_.toast(refusal, QStringLiteral("overdue"));
}

}  // namespace thalvorn::app
