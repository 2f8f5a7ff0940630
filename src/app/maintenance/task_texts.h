#pragma once

#include <QString>
#include <QVariant>
#include <string_view>

#include "app/status_tone.h"
#include "app/text.h"
#include "core/maintenance_task.h"
#include "core/task_status.h"

/// Words, tones and icons for tasks as the maintenance screens show them.
namespace thalvorn::app {

inline QString idText(const Uuid& id) { return toQt(id.toString()); }

/// "Overdue", "Due soon", "On track" …; "Snoozed" while it is silenced.
QString statusWord(TaskStatus status, bool snoozed);

/// The kind in one word, for a table: "Planned", "Squawk", "Warranty".
QString kindWord(Choice<TaskKind> kind);

/// The stored symbol of a category's icon.
QString categoryIcon(Choice<TaskCategory> category);

/// All categories for a choice field or a menu: [{value: the raw value, text, icon}].
QVariantList categoryOptions();
/// All cases of another enumeration, likewise, without icons.
template <class E>
QVariantList plainOptions() {
  QVariantList options;
  for (const E value : allCases<E>()) {
    options.append(QVariantMap{{QStringLiteral("value"), toQt(rawText(value))},
                               {QStringLiteral("text"), toQt(displayText(value))}});
  }
  return options;
}

/// "every 365 days or 250 h"; "No repeat".
QString repeatText(const MaintenanceTask& task);

}  // namespace thalvorn::app
