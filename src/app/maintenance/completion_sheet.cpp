#include "app/maintenance/completion_sheet.h"

#include <algorithm>
#include <map>
#include <ranges>
#include <set>

#include "app/maintenance/photos.h"
#include "app/maintenance/task_texts.h"
#include "base/number_format.h"
#include "base/search_text.h"
#include "core/report_basics.h"

namespace thalvorn::app {

namespace {

constexpr std::size_t kEarlierNames = 8;

QString joined(std::initializer_list<std::string_view> parts, QStringView separator) {
  QStringList filled;
  for (const std::string_view part : parts) {
    if (!part.empty()) filled << toQt(part);
  }
  return filled.join(separator);
}

}  // namespace

// ---- a part ----

PartField::PartField(const Format& format, QObject* parent)
    : QObject(parent), quantity(format.number(1, 0)), format_(format) {}

QString PartField::message() const {
  if (empty()) return {};
  const auto amount = thalvorn::parseNumber(quantity.toStdString(), format_.numbers());
  if (!amount) return toQt(amount.error());
  if (*amount < 0) return QStringLiteral("A quantity is 0 or more.");
  if (cost.trimmed().isEmpty()) return {};
  const auto price = thalvorn::parseNumber(cost.toStdString(), format_.numbers());
  if (!price) return toQt(price.error());
  return *price < 0 ? QStringLiteral("A cost is 0 or more.") : QString();
}

PartUsage PartField::part() const {
  const auto read = [&](const QString& text) { return thalvorn::parseNumber(text.toStdString(), format_.numbers()); };
  PartUsage part{.id = Uuid::random(),
                 .name = name.trimmed().toStdString(),
                 .quantity = read(quantity).value_or(1),
                 .partNumber = number.trimmed().toStdString()};
  if (const auto price = read(cost)) part.cost = *price;
  if (part.name.empty() && part.partNumber.empty() && part.cost) part.name = "Part";
  return part;
}

// ---- the sheet ----

CompletionSheet::CompletionSheet(AppViewModel& store, const Format& format, const AttachmentStore& attachments,
                                 const Uuid& taskID)
    : store_(store),
      format_(format),
      attachments_(attachments),
      taskID_(taskID),
      opened_(store.now()),
      doneOn_(opened_) {
  connect(this, &CompletionSheet::changed, this, &CompletionSheet::errorChanged);
  const MaintenanceTask* task = this->task();
  const Vessel* vessel = task ? store_.vessels().find(task->vesselID) : nullptr;
  if (!vessel) return;
  for (const HourSource source : vessel->meters()) {
    auto* field = new MeterField(*vessel, source, format_, this);
    connect(field, &MeterField::changed, this, &CompletionSheet::changed);
    meters_.push_back(field);
  }
}

QString CompletionSheet::title() const { return QStringLiteral("Mark complete & log"); }

QString CompletionSheet::subtitle() const {
  const MaintenanceTask* one = task();
  const Vessel* vessel = one ? store_.vessels().find(one->vesselID) : nullptr;
  return one ? joined({one->title, vessel ? std::string_view(vessel->name) : std::string_view()}, u" · ") : QString();
}

void CompletionSheet::setDoneOn(const QDateTime& time) {
  if (!time.isValid() || Format::fromQml(time) == doneOn_) return;
  doneOn_ = Format::fromQml(time);
  Q_EMIT changed();
}

QString CompletionSheet::doneOnMessage() const {
  return toQt(completionDateProblem(doneOn_, store_.now(), store_.calendar()));
}

std::optional<double> CompletionSheet::laborCost() const {
  if (labor_.trimmed().isEmpty()) return std::nullopt;
  const auto cost = thalvorn::parseNumber(labor_.toStdString(), format_.numbers());
  return cost ? std::optional(*cost) : std::nullopt;
}

QString CompletionSheet::laborMessage() const {
  if (labor_.trimmed().isEmpty()) return {};
  const auto cost = thalvorn::parseNumber(labor_.toStdString(), format_.numbers());
  if (!cost) return toQt(cost.error());
  return *cost < 0 ? QStringLiteral("A cost is 0 or more.") : QString();
}

QString CompletionSheet::currency() const {
  const MaintenanceTask* one = task();
  const VesselProfile* profile = one ? store_.profileOf(one->vesselID) : nullptr;
  return toQt(costCurrency(profile ? *profile : VesselProfile()));
}

QVariantList CompletionSheet::equipment() const {
  const MaintenanceTask* one = task();
  QVariantList options;
  for (const EquipmentItem& item : store_.equipment().records()) {
    if (!one || item.vesselID != one->vesselID) continue;
    QString text = toQt(item.component);
    if (const QString make = joined({item.make, item.model}, u" "); !make.isEmpty())
      text += QStringLiteral(" · ") + make;
    options.append(QVariantMap{{QStringLiteral("value"), idText(item.id)}, {QStringLiteral("text"), text}});
  }
  if (!options.isEmpty()) {
    options.prepend(
        QVariantMap{{QStringLiteral("value"), QString()}, {QStringLiteral("text"), QStringLiteral("None")}});
  }
  return options;
}

QVariantList CompletionSheet::people() const {
  const MaintenanceTask* one = task();
  if (!one) return {};
  QVariantList list;
  std::set<std::string> named;
  const auto add = [&](const QString& name, const QString& detail) {
    if (name.isEmpty() || !named.insert(foldText(name.toStdString())).second) return;
    list.append(QVariantMap{{QStringLiteral("name"), name}, {QStringLiteral("detail"), detail}});
  };
  for (const CrewMember& member : store_.crewMembers().records()) {
    if (member.vesselID != one->vesselID || !member.isActive) continue;
    add(joined({member.firstName, member.lastName}, u" "), toQt(member.role.display()));
  }
  std::map<std::string, Timestamp, std::less<>> earlier;
  for (const ServiceLog& log : store_.logs().records()) {
    if (log.vesselID != one->vesselID || log.completedBy.empty()) continue;
    Timestamp& last = earlier[log.completedBy];
    last = std::max(last, log.completedDate);
  }
  std::vector<std::pair<Timestamp, std::string>> recent;
  for (const auto& [name, last] : earlier) recent.emplace_back(last, name);
  std::ranges::sort(recent, std::ranges::greater());
  for (const auto& [last, name] : recent | std::views::take(kEarlierNames)) {
    add(toQt(name), QStringLiteral("Earlier service"));
  }
  return list;
}

QList<QObject*> CompletionSheet::meters() const { return {meters_.begin(), meters_.end()}; }

QList<QObject*> CompletionSheet::parts() const { return {parts_.begin(), parts_.end()}; }

QStringList CompletionSheet::photos() const {
  QStringList addresses;
  for (const std::string& path : photos_) addresses << photoAddress(attachments_, path);
  return addresses;
}

int CompletionSheet::addPart() {
  auto* part = new PartField(format_, this);
  connect(part, &PartField::changed, this, &CompletionSheet::changed);
  parts_.push_back(part);
  Q_EMIT partsChanged();
  return static_cast<int>(parts_.size()) - 1;
}

void CompletionSheet::removePart(int line) {
  if (line < 0 || line >= static_cast<int>(parts_.size())) return;
  PartField* part = parts_[static_cast<std::size_t>(line)];
  parts_.erase(parts_.begin() + line);
  Q_EMIT partsChanged();
  Q_EMIT changed();
  part->deleteLater();
}

void CompletionSheet::addPhotos(const QList<QUrl>& pictures) {
  setError({});
  for (const QUrl& picture : pictures) {
    auto path = keepPhoto(attachments_, picture);
    if (!path) {
      setError(path.error());
    } else if (std::ranges::find(photos_, *path) == photos_.end()) {
      photos_.push_back(std::move(*path));
    }
  }
  Q_EMIT photosChanged();
  Q_EMIT changed();
}

void CompletionSheet::removePhoto(int position) {
  if (position < 0 || position >= static_cast<int>(photos_.size())) return;
  photos_.erase(photos_.begin() + position);
  Q_EMIT photosChanged();
  Q_EMIT changed();
}

CompletionForm CompletionSheet::form() const {
  CompletionForm form{.completedDate = doneOn_,
                      .technicianNotes = notes_.trimmed().toStdString(),
                      .equipmentID = Uuid::parse(equipmentId_.toStdString()),
                      .cost = laborCost(),
                      .completedBy = completedBy_.trimmed().toStdString(),
                      .photoPaths = photos_};
  for (const PartField* part : parts_) {
    if (!part->empty()) form.partsUsed.push_back(part->part());
  }
  for (const MeterField* meter : meters_) form.readings.push_back(meter->reading());
  return form;
}

QString CompletionSheet::nextDue() const {
  const MaintenanceTask* one = task();
  const Vessel* vessel = one ? store_.vessels().find(one->vesselID) : nullptr;
  if (!vessel) return {};
  const Calendar calendar = store_.calendar();
  return toQt(nextDueText(previewNextDue(*one, *vessel, form(), store_.now(), calendar), calendar));
}

bool CompletionSheet::dirty() const {
  return doneOn_ != opened_ || !completedBy_.isEmpty() || !labor_.isEmpty() || !notes_.isEmpty() ||
         !equipmentId_.isEmpty() || !photos_.empty() ||
         std::ranges::any_of(meters_, [](const MeterField* meter) { return !meter->text().isEmpty(); }) ||
         std::ranges::any_of(parts_, [](const PartField* part) { return !part->empty(); });
}

bool CompletionSheet::wrong() const {
  return !doneOnMessage().isEmpty() || !laborMessage().isEmpty() || std::ranges::any_of(meters_, &MeterField::wrong) ||
         std::ranges::any_of(parts_, [](const PartField* part) { return !part->message().isEmpty(); });
}

QString CompletionSheet::error() const {
  return marked_ && wrong() ? QStringLiteral("Something has to be put right first: see the marked fields.") : error_;
}

bool CompletionSheet::save() {
  marked_ = wrong();
  if (marked_) {
    error_.clear();
    Q_EMIT errorChanged();
    return false;
  }
  const Saving saving = store_.completeTask(taskID_, form());
  if (saving.isFinished() && !saving.result()) {
    setError(toQt(saving.result().error().message));
    return false;
  }
  setError({});
  return true;
}

void CompletionSheet::setError(const QString& error) {
  if (error == error_) return;
  error_ = error;
  Q_EMIT errorChanged();
}

}  // namespace thalvorn::app
