#include "app/registers/register_model.h"

#include <algorithm>

#include "app/maintenance/task_texts.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view kVesselFilter = "vessel";

QVariantMap option(const QString& value, const QString& text) {
  return {{QStringLiteral("value"), value}, {QStringLiteral("text"), text}};
}

QString filterKind(ColumnFilter filter) {
  if (filter == ColumnFilter::choice) return QStringLiteral("choice");
  return filter == ColumnFilter::choices ? QStringLiteral("choices") : QStringLiteral("text");
}

std::optional<Timestamp> dayOf(const QVariant& day) {
  const QDateTime time = day.toDateTime();
  return time.isValid() ? std::optional(Format::fromQml(time)) : std::nullopt;
}

}  // namespace

RegisterModel::RegisterModel(AppViewModel& store, PreferenceStore& preferences, const Format& format,
                             RegisterScope scope, QString key, QObject* parent)
    : QAbstractListModel(parent),
      store_(store),
      preferences_(preferences),
      format_(format),
      scope_(scope),
      key_(std::move(key)) {
  query_.sort = preferences.preference(key_ + QStringLiteral(".sort")).toStdString();
  query_.descending = preferences.preference(key_ + QStringLiteral(".ascending")) != u"1";
  refresh_.setSingleShot(true);
  refresh_.setInterval(0ms);
  connect(&refresh_, &QTimer::timeout, this, &RegisterModel::refresh);
  connect(&store_, &AppViewModel::selectedVesselIDChanged, this, [this] {
    if (scope_ != RegisterScope::selectedVessel) return;
    clearChosen();
    refresh();
  });
}

void RegisterModel::follow(const CollectionEvents& events) {
  // Positions are put right at once; everything else can wait until the edit is through.
  connect(&events, &CollectionEvents::reset, this, [this] {
    forgetRecords();
    orderStale_ = true;
    refresh();
  });
  connect(&events, &CollectionEvents::removed, this, [this](qsizetype position) {
    forgetRecords();
    closeUp(static_cast<std::uint32_t>(position));
    refreshSoon();
  });
  const auto changed = [this](qsizetype position) {
    forgetRecord(static_cast<std::uint32_t>(position));
    orderStale_ = true;
    refreshSoon();
  };
  connect(&events, &CollectionEvents::inserted, this, changed);
  connect(&events, &CollectionEvents::changed, this, changed);
}

void RegisterModel::setActive(bool active) {
  if (active == active_) return;
  active_ = active;
  if (active_ && stale_) refresh();
  Q_EMIT activeChanged();
}

void RegisterModel::closeUp(std::uint32_t gone) {
  const auto row = std::ranges::find(rows_, gone);
  const bool shown = row != rows_.end();
  const auto at = static_cast<int>(row - rows_.begin());
  if (shown) beginRemoveRows({}, at, at);
  for (auto* positions : {&order_, &rows_}) {
    std::erase(*positions, gone);
    for (std::uint32_t& position : *positions) position -= position > gone ? 1 : 0;
  }
  if (shown) endRemoveRows();
}

void RegisterModel::refreshSoon() { refresh_.start(); }

RegisterQuery RegisterModel::query() const {
  RegisterQuery query = query_;
  thalvorn::setDays(query, firstDay_, lastDay_, store_.calendar());
  if (scope_ == RegisterScope::selectedVessel && store_.selectedVesselID())
    query.vessels = {*store_.selectedVesselID()};
  return query;
}

void RegisterModel::refresh() {
  refresh_.stop();
  if (!active_ && rows_.empty()) {
    stale_ = true;
    return;
  }
  beginResetModel();
  rows_.clear();
  total_ = 0;
  stale_ = !active_;
  const bool inScope = scope_ == RegisterScope::fleet || store_.selectedVesselID().has_value();
  if (active_ && inScope) {
    const RegisterQuery asked = query();
    if (std::exchange(orderStale_, false)) order_ = ordered(asked);
    rows_ = passing(order_, asked);
    total_ = scope_ == RegisterScope::fleet ? static_cast<int>(order_.size())
                                            : static_cast<int>(std::ranges::count_if(order_, [&](std::uint32_t at) {
                                                return vesselAt(at) == asked.vessels.front();
                                              }));
  }
  std::erase_if(chosen_, [this](const Uuid& id) { return !positionOf(id); });
  endResetModel();
  Q_EMIT refreshed();
  Q_EMIT chosenChanged();
}

// ---- what is asked for ----

void RegisterModel::changeQuery() {
  Q_EMIT queryChanged();
  refresh();
}

QString RegisterModel::search() const { return toQt(query_.search); }

void RegisterModel::setSearch(const QString& search) {
  std::string text = search.simplified().toStdString();
  if (text == query_.search) return;
  query_.search = std::move(text);
  changeQuery();
}

bool RegisterModel::filtered() const {
  return !query_.search.empty() || firstDay_ || lastDay_ || !query_.narrowings.empty() || !query_.vessels.empty();
}

QVariantMap RegisterModel::vesselFilter() const {
  QVariantList options;
  for (const Vessel& vessel : store_.vessels().records()) options.append(option(idText(vessel.id), toQt(vessel.name)));
  QStringList values;
  for (const Uuid& vessel : query_.vessels) values << idText(vessel);
  return {{QStringLiteral("key"), toQt(kVesselFilter)},
          {QStringLiteral("label"), QStringLiteral("All vessels")},
          {QStringLiteral("kind"), QStringLiteral("choices")},
          {QStringLiteral("options"), options},
          {QStringLiteral("values"), values}};
}

QVariantList RegisterModel::filters() const {
  QVariantList list;
  if (scope_ == RegisterScope::fleet && ofVessels()) list.append(vesselFilter());
  for (const ColumnFacts& column : columns()) {
    if (column.filter == ColumnFilter::none) continue;
    QVariantList options;
    for (const EnumText& text : column.cases) options.append(option(toQt(text.raw), toQt(text.display)));
    QStringList values;
    for (const auto& narrowing : query_.narrowings) {
      if (narrowing.column != column.key) continue;
      for (const std::string& value : narrowing.values) values << toQt(value);
    }
    list.append(QVariantMap{{QStringLiteral("key"), toQt(column.key)},
                            {QStringLiteral("label"), toQt(column.title)},
                            {QStringLiteral("kind"), filterKind(column.filter)},
                            {QStringLiteral("options"), options},
                            {QStringLiteral("values"), values}});
  }
  return list;
}

void RegisterModel::narrow(const QString& filter, const QStringList& values) {
  const std::string key = filter.toStdString();
  if (key == kVesselFilter) {
    query_.vessels.clear();
    for (const QString& value : values)
      if (const auto id = Uuid::parse(value.toStdString())) query_.vessels.push_back(*id);
  } else {
    std::erase_if(query_.narrowings, [&](const auto& narrowing) { return narrowing.column == key; });
    RegisterQuery::Narrowing narrowing{.column = key, .values = {}};
    for (const QString& value : values)
      if (!value.isEmpty()) narrowing.values.push_back(value.toStdString());
    if (!narrowing.values.empty()) query_.narrowings.push_back(std::move(narrowing));
  }
  changeQuery();
}

void RegisterModel::setDays(const QVariant& first, const QVariant& last) {
  firstDay_ = dayOf(first);
  lastDay_ = dayOf(last);
  if (firstDay_ && lastDay_ && *lastDay_ < *firstDay_) std::swap(firstDay_, lastDay_);
  changeQuery();
}

QVariant RegisterModel::firstDay() const { return firstDay_ ? QVariant(Format::toQml(*firstDay_)) : QVariant(); }
QVariant RegisterModel::lastDay() const { return lastDay_ ? QVariant(Format::toQml(*lastDay_)) : QVariant(); }

void RegisterModel::clearFilters() {
  query_.search.clear();
  query_.vessels.clear();
  query_.narrowings.clear();
  firstDay_.reset();
  lastDay_.reset();
  changeQuery();
}

QString RegisterModel::sortKey() const {
  if (!query_.sort.empty()) return toQt(query_.sort);
  for (const ColumnFacts& column : columns())
    if (column.form == ValueForm::date || column.form == ValueForm::dateTime) return toQt(column.key);
  return {};
}

void RegisterModel::sortBy(const QString& key, bool descending) {
  query_.sort = key.toStdString();
  query_.descending = descending;
  preferences_.setPreference(key_ + QStringLiteral(".sort"), key);
  preferences_.setPreference(key_ + QStringLiteral(".ascending"), QString::number(descending ? 0 : 1));
  orderStale_ = true;
  changeQuery();
}

// ---- what is chosen ----

int RegisterModel::allChosen() const {
  if (chosen_.empty()) return Qt::Unchecked;
  const bool all = chosen_.size() >= rows_.size() &&
                   std::ranges::all_of(rows_, [this](std::uint32_t at) { return chosen_.contains(idAt(at)); });
  return all ? Qt::Checked : Qt::PartiallyChecked;
}

void RegisterModel::toggle(const QString& id) {
  const auto read = Uuid::parse(id.toStdString());
  if (!read) return;
  if (chosen_.erase(*read) == 0) chosen_.insert(*read);
  if (const int row = rowOf(id); row >= 0) Q_EMIT dataChanged(index(row), index(row), {chosenRole});
  Q_EMIT chosenChanged();
}

void RegisterModel::chooseAll(bool all) {
  chosen_.clear();
  if (all)
    for (const std::uint32_t at : rows_) chosen_.insert(idAt(at));
  if (count() > 0) Q_EMIT dataChanged(index(0), index(count() - 1), {chosenRole});
  Q_EMIT chosenChanged();
}

void RegisterModel::clearChosen() { chooseAll(false); }

std::vector<std::uint32_t> RegisterModel::chosenRows() {
  const RegisterQuery asked = query();
  if (std::exchange(orderStale_, false)) order_ = ordered(asked);
  if (chosen_.empty()) return passing(order_, asked);
  std::vector<std::uint32_t> chosen;
  for (const std::uint32_t at : order_)
    if (chosen_.contains(idAt(at))) chosen.push_back(at);
  return chosen;
}

// ---- what is shown ----

int RegisterModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant RegisterModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= count()) return {};
  const std::uint32_t position = rows_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case idRole:
      return idText(idAt(position));
    case vesselIdRole:
      return idText(vesselAt(position));
    case vesselNameRole: {
      const Vessel* vessel = store_.vessels().find(vesselAt(position));
      return vessel ? toQt(vessel->name) : QString();
    }
    case chosenRole:
      return chosen_.contains(idAt(position));
    default:
      break;
  }
  const std::vector<ColumnFacts>& facts = columns();
  const auto column = static_cast<std::size_t>(role - firstColumnRole);
  if (role < firstColumnRole || column >= facts.size()) return {};
  return toQt(shownText(valueAt(position, column), facts[column], format_.numbers(), store_.calendar()));
}

QHash<int, QByteArray> RegisterModel::roleNames() const {
  QHash<int, QByteArray> names{
      {idRole, "id"}, {vesselIdRole, "vesselId"}, {vesselNameRole, "vesselName"}, {chosenRole, "chosen"}};
  int role = firstColumnRole;
  for (const ColumnFacts& column : columns())
    names.insert(role++, QByteArray(column.key.data(), static_cast<qsizetype>(column.key.size())));
  return names;
}

int RegisterModel::rowOf(const QVariant& id) const {
  const auto read = Uuid::parse(id.toString().toStdString());
  const auto position = read ? positionOf(*read) : std::nullopt;
  if (!position) return -1;
  const auto row = std::ranges::find(rows_, *position);
  return row == rows_.end() ? -1 : static_cast<int>(row - rows_.begin());
}

}  // namespace thalvorn::app
