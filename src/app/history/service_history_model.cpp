#include "app/history/service_history_model.h"

#include <algorithm>

#include "app/maintenance/task_texts.h"
#include "base/number_format.h"
#include "core/report_basics.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

QVariantMap option(const QString& value, const QString& text, const QString& icon = {}) {
  return {{QStringLiteral("value"), value}, {QStringLiteral("text"), text}, {QStringLiteral("icon"), icon}};
}

}  // namespace

ServiceHistoryModel::ServiceHistoryModel(AppViewModel& store, PreferenceStore& preferences, const Format& format,
                                         QObject* parent)
    : QAbstractListModel(parent), store_(store), preferences_(preferences), format_(format) {
  sort_ = caseFromRaw<ServiceHistorySort>(preferences.preference(QStringLiteral("serviceHistory.sort")).toStdString())
              .value_or(ServiceHistorySort::date);
  descending_ = preferences.preference(QStringLiteral("serviceHistory.ascending")) != u"1";
  refresh_.setSingleShot(true);
  refresh_.setInterval(0ms);
  connect(&refresh_, &QTimer::timeout, this, &ServiceHistoryModel::refresh);
  // Positions behind a removed record are wrong at once; everything else can wait until the edit is through.
  const CollectionEvents& events = store_.logs().events();
  connect(&events, &CollectionEvents::reset, this, &ServiceHistoryModel::refresh);
  connect(&events, &CollectionEvents::removed, this, &ServiceHistoryModel::refresh);
  connect(&events, &CollectionEvents::inserted, this, &ServiceHistoryModel::refreshSoon);
  connect(&events, &CollectionEvents::changed, this, &ServiceHistoryModel::refreshSoon);
  connect(&store_, &AppViewModel::selectedVesselIDChanged, this, [this] {
    filter_.person.reset();
    filter_.category.reset();
    Q_EMIT queryChanged();
    refresh();
  });
}

void ServiceHistoryModel::setActive(bool active) {
  if (active == active_) return;
  active_ = active;
  if (active_ && stale_) refresh();
  Q_EMIT activeChanged();
}

void ServiceHistoryModel::refreshSoon() { refresh_.start(); }

void ServiceHistoryModel::refresh() {
  refresh_.stop();
  if (!active_ && rows_.empty()) {
    stale_ = true;
    return;
  }
  beginResetModel();
  rows_.clear();
  costs_ = {};
  stale_ = !active_;
  filter_.vesselID = store_.selectedVesselID();
  if (active_ && filter_.vesselID) {
    const auto logs = store_.logs().records();
    thalvorn::setPeriod(filter_, period_, store_.now(), store_.calendar());
    rows_ = selectServices(logs, filter_, sort_, descending_);
    for (const std::uint32_t row : rows_) costs_.add(logs[row]);
    years_ = costsByYear(logs, rows_, store_.calendar());
    readChoices();
  }
  endResetModel();
  Q_EMIT refreshed();
}

void ServiceHistoryModel::readChoices() {
  const auto logs = store_.logs().records();
  std::array<bool, caseCount<TaskCategory>> used{};
  total_ = 0;
  for (const ServiceLog& log : logs) {
    if (log.vesselID != *filter_.vesselID) continue;
    ++total_;
    if (log.category.isKnown()) used[log.category.order()] = true;
  }
  categories_ = {option({}, QStringLiteral("All Categories"))};
  for (const TaskCategory category : allCases<TaskCategory>()) {
    if (used[static_cast<std::size_t>(category)])
      categories_.append(option(toQt(rawText(category)), toQt(displayText(category)), categoryIcon(category)));
  }
  people_ = {option({}, QStringLiteral("Everybody"))};
  for (const std::string& name : peopleOfServices(logs, *filter_.vesselID))
    people_.append(option(toQt(name), toQt(name)));
}

// ---- what is asked for ----

void ServiceHistoryModel::changeQuery() {
  Q_EMIT queryChanged();
  refresh();
}

void ServiceHistoryModel::setSearch(const QString& search) {
  std::string text = search.simplified().toStdString();
  if (text == filter_.search) return;
  filter_.search = std::move(text);
  changeQuery();
}

QString ServiceHistoryModel::category() const { return filter_.category ? toQt(filter_.category->raw()) : QString(); }

void ServiceHistoryModel::setCategory(const QString& category) {
  filter_.category.reset();
  if (!category.isEmpty()) filter_.category = Choice<TaskCategory>::fromRaw(category.toStdString());
  changeQuery();
}

QString ServiceHistoryModel::kind() const { return filter_.kind ? toQt(filter_.kind->raw()) : QString(); }

void ServiceHistoryModel::setKind(const QString& kind) {
  filter_.kind.reset();
  if (!kind.isEmpty()) filter_.kind = Choice<TaskKind>::fromRaw(kind.toStdString());
  changeQuery();
}

QString ServiceHistoryModel::period() const { return toQt(rawText(period_)); }

void ServiceHistoryModel::setPeriod(const QString& period) {
  period_ = caseFromRaw<ServicePeriod>(period.toStdString()).value_or(ServicePeriod::all);
  changeQuery();
}

void ServiceHistoryModel::setPerson(const QString& person) {
  filter_.person.reset();
  if (!person.isEmpty()) filter_.person = person.toStdString();
  changeQuery();
}

bool ServiceHistoryModel::filtered() const {
  return filter_.category || filter_.kind || filter_.person || period_ != ServicePeriod::all || !filter_.search.empty();
}

QString ServiceHistoryModel::sortField() const { return toQt(rawText(sort_)); }

void ServiceHistoryModel::sortBy(const QString& sort, bool descending) {
  sort_ = caseFromRaw<ServiceHistorySort>(sort.toStdString()).value_or(ServiceHistorySort::date);
  descending_ = descending;
  preferences_.setPreference(QStringLiteral("serviceHistory.sort"), sortField());
  preferences_.setPreference(QStringLiteral("serviceHistory.ascending"), QString::number(descending ? 0 : 1));
  changeQuery();
}

void ServiceHistoryModel::clearFilters() {
  filter_ = {};
  period_ = ServicePeriod::all;
  changeQuery();
}

// ---- what is shown ----

QVariantList ServiceHistoryModel::kinds() const {
  return QVariantList{option({}, QStringLiteral("All kinds"))} + plainOptions<TaskKind>();
}

QVariantList ServiceHistoryModel::periods() const { return plainOptions<ServicePeriod>(); }

std::string ServiceHistoryModel::currency() const {
  const auto vessel = store_.selectedVesselID();
  const VesselProfile* profile = vessel ? store_.profileOf(*vessel) : nullptr;
  return std::string(costCurrency(profile ? *profile : VesselProfile()));
}

QString ServiceHistoryModel::amount(const std::optional<double>& value) const {
  return value ? format_.number(*value, currencyDecimals(currency())) : QString();
}

QVariantMap ServiceHistoryModel::costs() const {
  return {{QStringLiteral("services"), format_.number(static_cast<double>(costs_.services))},
          {QStringLiteral("labour"), amount(costs_.labour)},
          {QStringLiteral("parts"), amount(costs_.parts)},
          {QStringLiteral("total"), amount(costs_.total())},
          {QStringLiteral("currency"), toQt(currency())}};
}

QVariantList ServiceHistoryModel::years() const {
  QVariantList list;
  for (const ServiceYear& year : years_) {
    list.append(QVariantMap{{QStringLiteral("year"), QString::number(year.year)},
                            {QStringLiteral("services"), format_.number(static_cast<double>(year.costs.services))},
                            {QStringLiteral("labour"), amount(year.costs.labour)},
                            {QStringLiteral("parts"), amount(year.costs.parts)},
                            {QStringLiteral("total"), amount(year.costs.total())},
                            {QStringLiteral("share"), costs_.total() > 0 ? year.costs.total() / costs_.total() : 0.0}});
  }
  return list;
}

int ServiceHistoryModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant ServiceHistoryModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= count()) return {};
  const ServiceLog& log = store_.logs()[rows_[static_cast<std::size_t>(index.row())]];
  switch (role) {
    case idRole:
      return idText(log.id);
    case dateRole:
      return format_.date(Format::toQml(log.completedDate));
    case dateExactRole:
      return format_.dateTime(Format::toQml(log.completedDate));
    case yearRole:
      return QString::number(static_cast<int>(store_.calendar().date(log.completedDate).year()));
    case titleRole:
      return toQt(log.taskTitle);
    case categoryRole:
      return toQt(log.category.display());
    case iconRole:
      return categoryIcon(log.category);
    case kindRole:
      return kindWord(log.kind);
    case hoursRole:
      return log.engineHoursAtService > 0 ? format_.hours(log.engineHoursAtService) : QString();
    case personRole:
      return toQt(log.completedBy);
    case notesRole:
      return toQt(log.technicianNotes).simplified();
    case partsRole: {
      QStringList parts;
      for (const PartUsage& part : log.partsUsed)
        parts << toQt(formatQuantity(part.quantity, 3, format_.numbers())) + QStringLiteral(" × ") + toQt(part.name);
      return parts.join(QStringLiteral(", "));
    }
    case labourRole:
      return amount(log.cost);
    case partsCostRole:
      return amount(partsCost(log));
    case totalRole:
      return amount(totalCost(log));
    case photosRole:
      return static_cast<int>(log.photoPaths.size());
    case correctedRole:
      return !log.corrections.empty();
    default:
      return {};
  }
}

QHash<int, QByteArray> ServiceHistoryModel::roleNames() const {
  return {{idRole, "id"},         {dateRole, "date"},           {dateExactRole, "dateExact"},
          {yearRole, "year"},     {titleRole, "title"},         {categoryRole, "category"},
          {iconRole, "icon"},     {kindRole, "kind"},           {hoursRole, "hours"},
          {personRole, "person"}, {notesRole, "notes"},         {partsRole, "parts"},
          {labourRole, "labour"}, {partsCostRole, "partsCost"}, {totalRole, "total"},
          {photosRole, "photos"}, {correctedRole, "corrected"}};
}

int ServiceHistoryModel::rowOf(const QVariant& id) const {
  const auto read = Uuid::parse(id.toString().toStdString());
  const auto at = read ? store_.logs().indexOf(*read) : std::nullopt;
  if (!at) return -1;
  const auto row = std::ranges::find(rows_, static_cast<std::uint32_t>(*at));
  return row == rows_.end() ? -1 : static_cast<int>(row - rows_.begin());
}

std::vector<ServiceLog> ServiceHistoryModel::servicesOf(const Uuid& vessel) const {
  ServiceHistoryFilter filter = filter_;
  filter.vesselID = vessel;
  thalvorn::setPeriod(filter, period_, store_.now(), store_.calendar());
  std::vector<ServiceLog> logs;
  for (const std::uint32_t row : selectServices(store_.logs().records(), filter, sort_, descending_))
    logs.push_back(store_.logs()[row]);
  return logs;
}

std::vector<ServiceLog> ServiceHistoryModel::shownLogs() const {
  std::vector<ServiceLog> logs;
  logs.reserve(rows_.size());
  for (const std::uint32_t row : rows_) logs.push_back(store_.logs()[row]);
  return logs;
}

}  // namespace thalvorn::app
