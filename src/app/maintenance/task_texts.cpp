#include "app/maintenance/task_texts.h"

#include <array>

#include "core/task_repetition.h"

namespace thalvorn::app {

namespace {

constexpr std::array<std::string_view, caseCount<TaskCategory>> kCategoryIcons{
    "engine.combustion.fill",
    "engine.combustion.fill",
    "engine.combustion.fill",
    "bolt.circle.fill",
    "ferry.fill",
    "arrow.up.and.down.and.arrow.left.and.right",
    "sailboat.fill",
    "tv.and.hifispeaker.fill",
    "washer.fill",
    "hammer.fill",
    "sparkles",
    "bolt.fill",
    "location.north.fill",
    "wrench.and.screwdriver.fill",
    "gearshape.fill",
    "thermometer.medium",
    "arrow.up.and.down.circle.fill",
    "drop.fill",
    "lifepreserver.fill",
    "cross.circle.fill",
    "scissors",
    "arrow.down.to.line",
    "ferry.fill",
    "drop.fill",
    "paintbrush.fill",
    "arrow.up.and.down.circle.fill",
    "fuelpump.fill",
    "wrench.and.screwdriver.fill",
};

constexpr std::array<std::string_view, caseCount<TaskKind>> kKindWords{"Planned", "Squawk", "Warranty"};

}  // namespace

QString statusWord(TaskStatus status, bool snoozed) {
  return snoozed ? QStringLiteral("Snoozed") : toQt(displayText(status));
}

QString kindWord(Choice<TaskKind> kind) { return toQt(kind.isKnown() ? kKindWords[kind.order()] : kind.display()); }

QString categoryIcon(Choice<TaskCategory> category) {
  return toQt(kCategoryIcons[static_cast<std::size_t>(category.knownOr(TaskCategory::other))]);
}

QVariantList categoryOptions() {
  QVariantList options;
  for (const TaskCategory category : allCases<TaskCategory>()) {
    options.append(QVariantMap{{QStringLiteral("value"), toQt(rawText(category))},
                               {QStringLiteral("text"), toQt(displayText(category))},
                               {QStringLiteral("icon"), categoryIcon(category)}});
  }
  return options;
}

QString repeatText(const MaintenanceTask& task) {
  const std::string interval = intervalText(repeatDays(task), repeatHours(task));
  return interval.empty() ? QStringLiteral("No repeat") : QStringLiteral("every ") + toQt(interval);
}

}  // namespace thalvorn::app
