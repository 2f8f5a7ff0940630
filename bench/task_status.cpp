// Classifying and counting a million tasks, beside a pass that only reads the same fields, and beside asking the
// calendar for every task.

#include "core/task_status.h"

#include <cstdlib>
#include <new>

#include "figures.h"
#include "tasks.h"

using namespace thalvorn;

namespace {
std::size_t allocations = 0;
}

void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

int main() {
  const Timestamp now = parseTimestamp("2026-11-21T09:40:00Z").value();
  const Calendar calendar = Calendar::inZone("Europe/Rome").value();
  std::vector<Vessel> vessels(3);
  for (std::size_t i = 0; i < vessels.size(); ++i) {
    vessels[i].id = Uuid::named(Uuid{}, std::to_string(i));
    vessels[i].engineHours = vessels[i].engine2Hours = vessels[i].engine3Hours = 4812.4;
  }
  auto tasks = bench::makeTasks(1'000'000, vessels[0].id, now);
  for (std::size_t i = 0; i < tasks.size(); ++i) tasks[i].vesselID = vessels[i % 3].id;
  const Fleet fleet(vessels);
  const StatusHorizon horizon(now, calendar);

  std::size_t during = 0;
  const auto classify = [&] {
    const std::size_t before = allocations;
    bench::keep(countTasks(tasks, fleet, horizon).overdue);
    during = allocations - before;
  };
  const auto reading = bench::inTurn(9, classify, [&] {
    // The same fields and the vessel's meter, added up without a rule.
    double sum = 0;
    for (const MaintenanceTask& task : tasks) {
      const double reading = fleet.meters(task.vesselID).reading(task.hourSource);
      if (task.isCompleted) continue;
      if (task.dueDate) sum += static_cast<double>(task.dueDate->time_since_epoch().count() & 7);
      if (task.dueAtEngineHours) sum += *task.dueAtEngineHours - reading;
      if (task.snoozedUntil) sum += 1;
    }
    bench::keep(sum);
  });
  reading.atMost("classify and count 1,000,000 tasks", "a pass that reads the same fields", 2);
  const auto asking = bench::inTurn(3, classify, [&] {
    std::size_t overdue = 0;
    for (const MaintenanceTask& task : tasks) {
      if (!task.dueDate) continue;
      const auto days = calendar.dayComponent(now, *task.dueDate);
      overdue += days && *days < 0;
    }
    bench::keep(overdue);
  });
  asking.faster("classify and count 1,000,000 tasks", "asking the calendar per task", 5);
  bench::printFigure("allocations while classifying", std::to_string(during), "none", static_cast<double>(during), 0);
}
