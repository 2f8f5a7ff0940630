#include "app/record_search.h"

#include <iterator>

#include "base/date_format.h"
#include "base/search_text.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

namespace {

QString qt(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

QVariantMap highlight(const Uuid& id) { return {{QStringLiteral("highlight"), qt(id.toString())}}; }

std::string vesselName(const AppViewModel& model, const Uuid& id) {
  const Vessel* vessel = model.vessels().find(id);
  return vessel ? vessel->name : std::string();
}

}  // namespace

SearchSource recordSearch(const AppViewModel& model) {
  return [&model](const QString& query, int limit) {
    std::vector<SearchHit> hits;
    SearchWords words(query.toStdString());
    if (words.empty()) return hits;
    const auto addWhile = [&](const auto& records, auto&& matches, auto&& hit) {
      int found = 0;
      for (const auto& record : records) {
        if (found == limit) return;
        if (!matches(record)) continue;
        hits.push_back(hit(record));
        ++found;
      }
    };
    addWhile(
        model.vessels().records(), [&](const Vessel& vessel) { return words.matches({vessel.name, vessel.type}); },
        [&](const Vessel& vessel) {
          return SearchHit{.title = qt(vessel.name),
                           .detail = qt(vessel.type),
                           .icon = QStringLiteral("boat"),
                           .group = QStringLiteral("Vessels"),
                           .page = QStringLiteral("vessels"),
                           .arguments = highlight(vessel.id),
                           .notification = {}};
        });
    addWhile(
        model.tasks().records(),
        [&](const MaintenanceTask& task) {
          return !task.isCompleted && words.matches({task.title, task.category.display(), task.notes});
        },
        [&](const MaintenanceTask& task) {
          return SearchHit{.title = qt(task.title),
                           .detail = qt(vesselName(model, task.vesselID)),
                           .icon = QStringLiteral("wrench"),
                           .group = QStringLiteral("Tasks"),
                           .page = QStringLiteral("taskLibrary"),
                           .arguments = highlight(task.id),
                           .notification = {}};
        });
    const Calendar calendar = model.calendar();
    addWhile(
        model.logs().records(),
        [&](const ServiceLog& log) { return words.matches({log.taskTitle, log.completedBy, log.technicianNotes}); },
        [&](const ServiceLog& log) {
          return SearchHit{
              .title = qt(log.taskTitle),
              .detail = qt(formatDate(calendar.date(log.completedDate)) + " · " + vesselName(model, log.vesselID)),
              .icon = QStringLiteral("clock-counter-clockwise"),
              .group = QStringLiteral("Service history"),
              .page = QStringLiteral("serviceHistory"),
              .arguments = highlight(log.id),
              .notification = {}};
        });
    return hits;
  };
}

}  // namespace thalvorn::app
