#include "app/library/template_library.h"

#include <algorithm>

#include "app/maintenance/task_texts.h"
#include "app/save_outcome.h"
#include "base/search_text.h"

namespace thalvorn::app {

namespace {

constexpr int kShownDues = 6;

QString folded(const std::string& title) { return toQt(foldText(title)); }

}  // namespace

TemplateLibrary::TemplateLibrary(AppViewModel& store, AppController& app, const Format& format, QObject* parent)
    : QAbstractListModel(parent), store_(store), app_(app), format_(format) {
  start_.startDate = store_.now();
  showMatching();
  const auto again = [this] {
    if (active_) readVessel();
  };
  connect(&store_, &AppViewModel::edited, this, again);
  connect(&store_, &AppViewModel::reloaded, this, again);
  connect(&store_, &AppViewModel::selectedVesselIDChanged, this, again);
}

void TemplateLibrary::setActive(bool active) {
  if (active == active_) return;
  active_ = active;
  if (active_) readVessel();
  Q_EMIT activeChanged();
}

void TemplateLibrary::readVessel() {
  presentTitles_.clear();
  const auto vessel = store_.selectedVesselID();
  for (const MaintenanceTask& task : store_.tasks().records())
    if (task.vesselID == vessel && !task.isCompleted) presentTitles_.insert(folded(task.title));
  if (count() > 0) Q_EMIT dataChanged(index(0), index(count() - 1));
  Q_EMIT chosenChanged();
  Q_EMIT firstDueChanged();
}

void TemplateLibrary::setSearch(const QString& search) {
  if (search == search_) return;
  search_ = search;
  showMatching();
}

void TemplateLibrary::setCategory(const QString& category) {
  if (category == category_) return;
  category_ = category;
  showMatching();
}

void TemplateLibrary::showMatching() {
  beginResetModel();
  shown_ = findTemplates(search_.toStdString(), caseFromRaw<TaskCategory>(category_.toStdString()));
  endResetModel();
  Q_EMIT shownChanged();
  Q_EMIT chosenChanged();
}

QVariantList TemplateLibrary::categories() const {
  const QVariantMap all{{QStringLiteral("value"), QString()},
                        {QStringLiteral("text"), QStringLiteral("All Categories")}};
  return QVariantList{all} + categoryOptions();
}

bool TemplateLibrary::fitted(const TaskTemplate& made) const {
  const Vessel* vessel = store_.selectedVessel();
  return !vessel || vessel->hasMeter(meterOfCategory(made.category));
}

bool TemplateLibrary::present(const TaskTemplate& made) const { return presentTitles_.contains(folded(made.title)); }

// ---- the choice ----

QString TemplateLibrary::chosenText() const { return format_.number(chosenCount()) + QStringLiteral(" selected"); }

QString TemplateLibrary::chosenWarning() const {
  int twice = 0;
  int notFitted = 0;
  for (const TaskTemplate& made : templateCatalogue()) {
    if (!chosen_.contains(idText(made.id))) continue;
    twice += present(made) ? 1 : 0;
    notFitted += fitted(made) ? 0 : 1;
  }
  QStringList parts;
  if (twice > 0) parts << QStringLiteral("%1 already among the tasks.").arg(twice);
  if (notFitted > 0) parts << QStringLiteral("%1 for machinery she does not have.").arg(notFitted);
  return parts.join(u' ');
}

int TemplateLibrary::allChosen() const {
  qsizetype chosen = 0;
  qsizetype offered = 0;
  for (const TaskTemplate* made : shown_) {
    const bool is = chosen_.contains(idText(made->id));
    chosen += is ? 1 : 0;
    offered += is || (fitted(*made) && !present(*made)) ? 1 : 0;
  }
  return chosen == 0 ? Qt::Unchecked : chosen == offered ? Qt::Checked : Qt::PartiallyChecked;
}

void TemplateLibrary::toggle(const QString& id) {
  if (!chosen_.remove(id)) chosen_.insert(id);
  const int row = rowOf(id);
  if (row >= 0) Q_EMIT dataChanged(index(row), index(row), {chosenRole});
  Q_EMIT chosenChanged();
  Q_EMIT firstDueChanged();
}

void TemplateLibrary::chooseAll(bool chosen) {
  for (const TaskTemplate* made : shown_) {
    const QString id = idText(made->id);
    if (!chosen) {
      chosen_.remove(id);
    } else if (fitted(*made) && !present(*made)) {
      chosen_.insert(id);
    }
  }
  if (count() > 0) Q_EMIT dataChanged(index(0), index(count() - 1), {chosenRole});
  Q_EMIT chosenChanged();
  Q_EMIT firstDueChanged();
}

void TemplateLibrary::clearChoice() {
  chosen_.clear();
  if (count() > 0) Q_EMIT dataChanged(index(0), index(count() - 1), {chosenRole});
  Q_EMIT chosenChanged();
  Q_EMIT firstDueChanged();
}

// ---- from when ----

QString TemplateLibrary::from() const {
  switch (start_.from) {
    case TemplateStart::From::lastDone:
      return QStringLiteral("lastDone");
    case TemplateStart::From::notKnown:
      return QStringLiteral("notKnown");
    case TemplateStart::From::startDate:
      break;
  }
  return QStringLiteral("startDate");
}

void TemplateLibrary::setFrom(const QString& from) {
  start_.from = from == u"lastDone"   ? TemplateStart::From::lastDone
                : from == u"notKnown" ? TemplateStart::From::notKnown
                                      : TemplateStart::From::startDate;
  Q_EMIT startChanged();
  Q_EMIT firstDueChanged();
}

QVariantList TemplateLibrary::starts() const {
  const auto option = [](const char16_t* value, const char16_t* text) {
    return QVariantMap{{QStringLiteral("value"), QString::fromUtf16(value)},
                       {QStringLiteral("text"), QString::fromUtf16(text)}};
  };
  return {option(u"startDate", u"Begin on a start date"), option(u"lastDone", u"Last done on / at hours"),
          option(u"notKnown", u"Last done: not known")};
}

void TemplateLibrary::setStartDate(const QDateTime& date) {
  if (date.isValid()) start_.startDate = Format::fromQml(date);
  Q_EMIT startChanged();
  Q_EMIT firstDueChanged();
}

QVariant TemplateLibrary::lastDone() const {
  return start_.lastDone ? QVariant(Format::toQml(*start_.lastDone)) : QVariant();
}

void TemplateLibrary::setLastDone(const QVariant& date) {
  const QDateTime time = date.toDateTime();
  start_.lastDone = time.isValid() ? std::optional(Format::fromQml(time)) : std::nullopt;
  Q_EMIT startChanged();
  Q_EMIT firstDueChanged();
}

void TemplateLibrary::setLastDoneHours(const QString& hours) {
  lastDoneHours_ = hours;
  Q_EMIT startChanged();
  Q_EMIT firstDueChanged();
}

QString TemplateLibrary::lastDoneHoursMessage() const {
  if (lastDoneHours_.trimmed().isEmpty()) return {};
  const auto read = parseNumber(lastDoneHours_.toStdString(), format_.numbers());
  if (!read) return toQt(read.error());
  return *read < 0 ? QStringLiteral("A meter reading is not below zero.") : QString();
}

TemplateStart TemplateLibrary::start() const {
  TemplateStart start = start_;
  const auto hours = parseNumber(lastDoneHours_.toStdString(), format_.numbers());
  start.lastDoneHours = hours ? std::optional(*hours) : std::nullopt;
  return start;
}

QVariantList TemplateLibrary::firstDue() const {
  QVariantList list;
  const Vessel* vessel = store_.selectedVessel();
  if (!vessel) return list;
  for (const TaskTemplate& made : templateCatalogue()) {
    if (!chosen_.contains(idText(made.id))) continue;
    const MaintenanceTask task = taskFromTemplate(made, *vessel, start(), store_.calendar());
    QStringList due;
    if (task.dueDate) due << format_.date(Format::toQml(*task.dueDate));
    if (task.dueAtEngineHours) due << format_.hours(*task.dueAtEngineHours);
    list.append(QVariantMap{{QStringLiteral("title"), toQt(made.title)},
                            {QStringLiteral("due"), due.join(QStringLiteral(" or "))},
                            {QStringLiteral("proposed"), toQt(proposedHoursText(made))}});
    if (list.size() == kShownDues) break;
  }
  return list;
}

QString TemplateLibrary::vesselName() const {
  const Vessel* vessel = store_.selectedVessel();
  return vessel ? toQt(vessel->name) : QString();
}

bool TemplateLibrary::addToTasks() {
  const Vessel* vessel = store_.selectedVessel();
  if (!vessel) {
    app_.toast(QStringLiteral("Add a vessel first: the tasks belong to it."), QStringLiteral("soon"));
    return false;
  }
  if (chosen_.isEmpty() || (start_.from == TemplateStart::From::lastDone && !lastDoneHoursMessage().isEmpty()))
    return false;
  Edit edit;
  for (const TaskTemplate& made : templateCatalogue()) {
    if (chosen_.contains(idText(made.id))) edit.add(taskFromTemplate(made, *vessel, start(), store_.calendar()));
  }
  const QString count = QStringLiteral("%1 %2")
                            .arg(edit.changes.size())
                            .arg(edit.changes.size() == 1 ? QStringLiteral("task") : QStringLiteral("tasks"));
  edit.label = count.toStdString() + " added to “" + vessel->name + "”";
  const QString label = toQt(edit.label);
  if (const QString refusal = refusalOf(store_.apply(std::move(edit))); !refusal.isEmpty()) {
    app_.toast(refusal, QStringLiteral("overdue"));
    return false;
  }
  clearChoice();
  app_.toast(label + QStringLiteral(" · Ctrl+Z takes it back"), QStringLiteral("ok"));
  return true;
}

// ---- the list ----

int TemplateLibrary::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant TemplateLibrary::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= count()) return {};
  const TaskTemplate& made = *shown_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case idRole:
      return idText(made.id);
    case titleRole:
      return toQt(made.title);
    case categoryRole:
      return toQt(made.category.display());
    case iconRole:
      return categoryIcon(made.category);
    case intervalRole:
      return toQt(repeatText(made));
    case proposedRole:
      return toQt(proposedHoursText(made));
    case notesRole:
      return toQt(made.notes);
    case chosenRole:
      return chosen_.contains(idText(made.id));
    case remarkRole:
      return present(made) ? QStringLiteral("In your tasks") : fitted(made) ? QString() : QStringLiteral("Not fitted");
    default:
      return {};
  }
}

QHash<int, QByteArray> TemplateLibrary::roleNames() const {
  return {{idRole, "id"},       {titleRole, "title"},       {categoryRole, "category"},
          {iconRole, "icon"},   {intervalRole, "interval"}, {proposedRole, "proposed"},
          {notesRole, "notes"}, {chosenRole, "chosen"},     {remarkRole, "remark"}};
}

int TemplateLibrary::rowOf(const QVariant& id) const {
  const QString wanted = id.toString();
  const auto found = std::ranges::find_if(shown_, [&](const TaskTemplate* made) { return idText(made->id) == wanted; });
  return found == shown_.end() ? -1 : static_cast<int>(found - shown_.begin());
}

}  // namespace thalvorn::app
