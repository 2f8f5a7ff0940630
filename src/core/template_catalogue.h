#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/calendar.h"
#include "core/maintenance_task.h"
#include "core/task_template.h"
#include "core/vessel.h"

/// The ready catalogue of tasks, built into the program, and how a template becomes a task.
namespace thalvorn {

/// All templates, by category. Their titles are unique and their identities always the same.
std::span<const TaskTemplate> templateCatalogue();

/// The templates whose title, category or note has every word of `search`, in the catalogue's order.
std::vector<const TaskTemplate*> findTemplates(std::string_view search,
                                               const std::optional<TaskCategory>& category = std::nullopt);

/// The template with this title, without regard to case and accents; null when there is none.
const TaskTemplate* templateTitled(std::string_view title);

/// "Every 365 days or 250 h".
std::string repeatText(const TaskTemplate& made);

/// "Set to current + 250 h": how the due reading is proposed; empty for a template without hours.
std::string proposedHoursText(const TaskTemplate& made);

/// The meter on which a category's hours run: its engine, the first generator, the hydraulics; else engine 1.
HourSource meterOfCategory(Choice<TaskCategory> category);

/// From what the first due point of a new task is counted.
struct TemplateStart {
  enum class From : std::uint8_t {
    startDate,  ///< one interval after the start date and the current reading
    lastDone,   ///< one interval after it was last done; what is not known of that is taken from the start
    notKnown    ///< due on the start date, and at the current reading when it runs by hours alone
  };
  Timestamp startDate{};
  From from = From::startDate;
  std::optional<Timestamp> lastDone = {};
  std::optional<double> lastDoneHours = {};
};

/// A new task of the vessel; the template itself stays apart from it.
MaintenanceTask taskFromTemplate(const TaskTemplate& made, const Vessel& vessel, const TemplateStart& start,
                                 const Calendar& calendar, const Uuid& taskID = Uuid::random());

}  // namespace thalvorn
