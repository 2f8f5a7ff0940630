#include "core/demo_fleet.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "base/search_text.h"
#include "core/demo_dice.h"
#include "core/demo_tables.h"
#include "core/meters.h"
#include "core/task_snooze.h"
#include "core/template_catalogue.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;
using demo::Dice;
using demo::Yacht;

constexpr Uuid kDemoSpace{
    {0xa4, 0x37, 0x90, 0x5c, 0x18, 0xe2, 0x4d, 0x06, 0x83, 0x5f, 0x2b, 0x61, 0xf7, 0xc9, 0x0a, 0x44}};

bool endsWithJob(std::string_view title, std::string_view job) {
  return title.size() >= job.size() && equalIgnoringCase(title.substr(title.size() - job.size()), job);
}

template <class Row>
const Row* rowForJob(std::span<const Row> rows, std::string_view title) {
  const auto found = std::ranges::find_if(rows, [&](const Row& row) { return endsWithJob(title, row.job); });
  return found == rows.end() ? nullptr : &*found;
}

double tenths(double hours) { return std::round(hours * 10) / 10; }

/// Days between two services when the crew keeps to the plan.
double intervalDays(const MaintenanceTask& task, double hoursPerDay) {
  double days = task.recurringDays ? static_cast<double>(*task.recurringDays) : 3650;
  if (task.recurringEngineHours && hoursPerDay > 0) days = std::min(days, *task.recurringEngineHours / hoursPerDay);
  return days;
}

/// How far back the history goes: years for rare jobs, months for monthly ones, weeks for weekly ones.
int historyDays(double interval) { return interval < 15 ? 120 : interval < 80 ? 420 : 1500; }

TaskPriority priorityOf(const MaintenanceTask& task) {
  switch (task.category.knownOr(TaskCategory::other)) {
    case TaskCategory::safety:
    case TaskCategory::medical:
    case TaskCategory::bilge:
      return TaskPriority::high;
    case TaskCategory::cosmetic:
    case TaskCategory::brightwork:
    case TaskCategory::upholsteryCanvas:
    case TaskCategory::carpentry:
      return TaskPriority::low;
    default:
      return TaskPriority::medium;
  }
}

bool hasAboard(const Yacht& yacht, const TaskTemplate& made) {
  const auto isOther = [](const auto& rows, const auto& row) { return std::ranges::find(rows, row) == rows.end(); };
  return isOther(yacht.without, made.category.knownOr(TaskCategory::other)) && isOther(yacht.notAboard, made.title);
}

class Builder {
 public:
  Builder(Timestamp now, const Calendar& calendar) : today_(calendar.startOfDay(now) + 12h), calendar_(calendar) {}

  DemoFleet build() {
    for (const Yacht& yacht : demo::yachts()) {
      addVessel(yacht);
      addProgramme(yacht);
      addDefects(yacht);
    }
    std::ranges::sort(fleet_.logs, [](const ServiceLog& a, const ServiceLog& b) {
      return a.completedDate != b.completedDate ? a.completedDate > b.completedDate : a.id < b.id;
    });
    return std::move(fleet_);
  }

 private:
  static Uuid idOf(std::string_view what, const Yacht& yacht, std::string_view name) {
    return Uuid::named(kDemoSpace, fmt::format("{}/{}/{}", what, yacht.vessel.name, name));
  }

  /// A moment of a working day `daysAgo` days ago, 1 or more.
  Timestamp workingHour(int daysAgo, Dice& dice) const {
    return calendar_.startOfDay(daysFromToday(-daysAgo)) + 8h + std::chrono::minutes(5 * dice.below(110));
  }

  Timestamp daysFromToday(int days) const { return calendar_.addDays(today_, days).value_or(today_); }

  double daysSince(Timestamp when) const {
    return std::chrono::duration<double, std::ratio<86400>>(today_ - when).count();
  }

  /// What a meter showed then, by the pace at which it runs.
  double readingAt(const Yacht& yacht, HourSource source, Timestamp when) const {
    const double pace = yacht.hoursPerDay[static_cast<std::size_t>(source)];
    return tenths(std::max(0.0, yacht.vessel.reading(source) - pace * daysSince(when)));
  }

  void addVessel(const Yacht& yacht) {
    Vessel vessel = yacht.vessel;
    vessel.id = idOf("vessel", yacht, "");
    vessel.sortOrder = static_cast<std::int64_t>(fleet_.vessels.size());
    Dice dice(vessel.id);
    vessel.engineHoursUpdatedAt = workingHour(1, dice);
    if (vessel.numberOfEngines == 2) {
      const Timestamp at = workingHour(63, dice);
      const double right = readingAt(yacht, HourSource::engine2, at);
      vessel.meterHistory.push_back({.id = idOf("meter", yacht, "engine2"),
                                     .at = at,
                                     .hourSource = HourSource::engine2,
                                     .change = MeterChange::corrected,
                                     .before = tenths(right * 10),
                                     .after = right,
                                     .reason = "Decimal point left out when the reading was entered",
                                     .author = std::string(yacht.crew[0])});
    }
    VesselProfile profile = yacht.profile;
    profile.id = idOf("profile", yacht, "");
    profile.vesselID = vessel.id;
    profile.updatedAt = workingHour(200, dice);
    fleet_.vessels.push_back(std::move(vessel));
    fleet_.profiles.push_back(std::move(profile));
  }

  const Vessel& vessel() const { return fleet_.vessels.back(); }

  void addProgramme(const Yacht& yacht) {
    for (const TaskTemplate& made : templateCatalogue()) {
      const auto set = std::ranges::find_if(demo::setJobs(), [&](const demo::SetJob& job) {
        return job.vessel == yacht.vessel.name && job.title == made.title;
      });
      const bool isSet = set != demo::setJobs().end();
      MaintenanceTask task =
          taskFromTemplate(made, vessel(), {.startDate = today_}, calendar_, idOf("task", yacht, made.title));
      Dice dice(task.id);
      if (!isSet && (!hasAboard(yacht, made) || dice.below(100) >= yacht.share)) continue;
      const double interval = intervalDays(task, paceOf(yacht, task));
      // Elsewhere in its interval, but never at its very end: what is due today stands in the tables.
      const auto somewhere = static_cast<int>(interval * (8 + dice.below(76)) / 100) + 1;
      addPlanned(yacht, std::move(task), isSet ? set->doneDaysAgo : somewhere, isSet ? set->snoozedForDays : 0, dice);
    }
    for (const demo::OwnJob& job : demo::ownJobs()) {
      if (job.vessel != yacht.vessel.name) continue;
      MaintenanceTask task = taskOf(yacht, job);
      task.hourSource = job.meter;
      task.triggerType = job.hours > 0 ? TriggerType::both : TriggerType::date;
      task.recurringDays = job.days;
      if (job.hours > 0) task.recurringEngineHours = job.hours;
      Dice dice(task.id);
      addPlanned(yacht, std::move(task), job.doneDaysAgo, 0, dice);
    }
  }

  /// A task with the title, notes and category of a table row.
  template <class Row>
  MaintenanceTask taskOf(const Yacht& yacht, const Row& row) const {
    MaintenanceTask task;
    task.id = idOf("task", yacht, row.title);
    task.vesselID = vessel().id;
    task.title = row.title;
    task.notes = row.notes;
    task.category = row.category;
    return task;
  }

  static double paceOf(const Yacht& yacht, const MaintenanceTask& task) {
    return yacht.hoursPerDay[static_cast<std::size_t>(task.hourSource.knownOr(HourSource::engine))];
  }

  /// A repeating task with its history; its due point follows from the last service.
  void addPlanned(const Yacht& yacht, MaintenanceTask task, int doneDaysAgo, int snoozedForDays, Dice& dice) {
    task.priority = priorityOf(task);
    const double interval = intervalDays(task, paceOf(yacht, task));
    const int oldest = historyDays(interval);
    const unsigned firstNote = dice.below(3);
    unsigned number = 0;
    for (double daysAgo = doneDaysAgo; daysAgo <= std::max(oldest, doneDaysAgo); ++number) {
      const ServiceLog& log =
          addLog(yacht, task, workingHour(static_cast<int>(daysAgo), dice), number, firstNote + number);
      if (number == 0) setDue(task, log);
      daysAgo += std::max(1.0, interval * (92 + dice.below(14)) / 100);
    }
    if (snoozedForDays > 0) {
      const Timestamp until = daysFromToday(snoozedForDays);
      if (auto snoozed = snoozeTask(task, until, daysFromToday(-2), calendar_, yacht.crew[0]))
        task = std::move(*snoozed);
    }
    fleet_.tasks.push_back(std::move(task));
  }

  void setDue(MaintenanceTask& task, const ServiceLog& log) const {
    if (task.recurringDays) task.dueDate = calendar_.addDays(log.completedDate, *task.recurringDays);
    if (task.recurringEngineHours) task.dueAtEngineHours = log.engineHoursAtService + *task.recurringEngineHours;
  }

  ServiceLog& addLog(const Yacht& yacht, const MaintenanceTask& task, Timestamp when, unsigned number, unsigned note) {
    ServiceLog& log = fleet_.logs.emplace_back();
    log.id = idOf("log", yacht, fmt::format("{}/{}", task.title, number));
    log.taskID = task.id;
    log.vesselID = task.vesselID;
    log.taskTitle = task.title;
    log.category = task.category;
    log.kind = task.kind;
    log.completedDate = when;
    log.engineHoursAtService = readingAt(yacht, task.hourSource.knownOr(HourSource::engine), when);
    const TaskCategory category = task.category.knownOr(TaskCategory::other);
    if (const auto* own = rowForJob(demo::workNotes(), task.title))
      log.technicianNotes = own->notes[note % own->notes.size()];
    else
      log.technicianNotes = demo::notesOf(category)[note % demo::notesOf(category).size()];
    log.completedBy = yacht.crew[static_cast<std::size_t>(demo::roleFor(category))];
    // Prices rise by some three per cent a year.
    const double age = daysSince(when) / 365;
    const auto price = [&](double today) { return std::round(today * (1 - 0.03 * age) * 100) / 100; };
    if (const auto* firm = rowForJob(demo::contractors(), task.title)) {
      log.completedBy = firm->name;
      log.cost = price(firm->cost);
    }
    const auto* first = rowForJob(demo::jobParts(), task.title);
    for (const demo::JobPart& part : demo::jobParts())
      if (first && part.job == first->job)
        log.partsUsed.push_back({.id = Uuid::named(log.id, part.name),
                                 .name = std::string(part.name),
                                 .quantity = part.quantity,
                                 .partNumber = std::string(part.number),
                                 .cost = price(part.cost)});
    return log;
  }

  void addDefects(const Yacht& yacht) {
    for (const demo::Defect& defect : demo::defects()) {
      if (defect.vessel != yacht.vessel.name) continue;
      MaintenanceTask task = taskOf(yacht, defect);
      task.hourSource = meterOfCategory(defect.category);
      task.kind = defect.kind;
      task.priority = defect.priority;
      task.isCompleted = defect.doneDaysAgo > 0;
      Dice dice(task.id);
      const Timestamp from = task.isCompleted ? workingHour(defect.doneDaysAgo, dice) : today_;
      task.dueDate = calendar_.addDays(calendar_.startOfDay(from) + 18h, defect.dueInDays);
      if (task.isCompleted) {
        ServiceLog& log = addLog(yacht, task, from, 0, 0);
        log.technicianNotes = defect.workDone;
        if (!defect.doneBy.empty()) log.completedBy = defect.doneBy;
        if (defect.cost > 0) log.cost = defect.cost;
      }
      fleet_.tasks.push_back(std::move(task));
    }
  }

  Timestamp today_;  ///< noon: the fleet is the same at any hour of a day
  const Calendar& calendar_;
  DemoFleet fleet_;
};

}  // namespace

DemoFleet demoFleet(Timestamp now, const Calendar& calendar) { return Builder(now, calendar).build(); }

}  // namespace thalvorn
