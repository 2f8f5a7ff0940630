#include "core/template_catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "core/task_repetition.h"
#include "core/task_status.h"
#include "fixtures.h"

namespace thalvorn {
namespace {

using namespace thalvorn::testing;

TEST(TemplateCatalogue, IsCompleteAndConsistent) {
  std::set<std::string> titles;
  std::set<Uuid> ids;
  std::set<TaskCategory> categories;
  for (const TaskTemplate& made : templateCatalogue()) {
    EXPECT_TRUE(titles.insert(made.title).second) << made.title;
    EXPECT_TRUE(ids.insert(made.id).second) << made.title;
    ASSERT_TRUE(made.category.isKnown()) << made.category.raw();
    ASSERT_TRUE(made.triggerType.isKnown()) << made.triggerType.raw();
    categories.insert(*made.category.known());
    EXPECT_EQ(made.recurringDays.has_value(), made.triggerType != TriggerType::engineHours) << made.title;
    EXPECT_EQ(made.recurringEngineHours.has_value(), made.triggerType != TriggerType::date) << made.title;
    EXPECT_GT(made.recurringDays.value_or(1), 0) << made.title;
    EXPECT_GT(made.recurringEngineHours.value_or(1), 0) << made.title;
    EXPECT_FALSE(made.notes.empty()) << made.title;
    // Hours only make sense where a meter of the vessel counts them.
    if (made.recurringEngineHours)
      EXPECT_TRUE(meterOfCategory(made.category) != HourSource::engine || made.category == TaskCategory::engine ||
                  made.category == TaskCategory::fuel)
          << made.title;
  }
  EXPECT_TRUE(std::ranges::is_sorted(templateCatalogue(), {}, [](const auto& made) { return made.category.order(); }));
  EXPECT_EQ(categories.size(), caseCount<TaskCategory>) << "a category has no template";
}

TEST(TemplateCatalogue, HasTheJobsThatCrewsLookForFirst) {
  for (const auto& [title, note] : {std::pair{"Engine oil & filter change", "Use manufacturer-specified grade"},
                                    {"Raw water impeller replacement", "Carry a spare on board"},
                                    {"Fuel filter replacement", "Primary and secondary filters"},
                                    {"Engine coolant check", "Check level and condition"},
                                    {"Drive belt inspection", "Check tension and wear"},
                                    {"Zincs / anodes replacement", "Shaft, hull, and rudder anodes"},
                                    {"Antifouling bottom paint", "Haul out required"}}) {
    const TaskTemplate* found = templateTitled(title);
    ASSERT_NE(found, nullptr) << title;
    EXPECT_EQ(found->notes, note);
  }
  for (const auto* title :
       {"Fire extinguisher inspection", "Life raft service", "EPIRB battery & registration check",
        "Flare kit expiry check", "First aid kit restock", "Nav & anchor lights test", "VHF radio check & DSC test",
        "AIS transponder check", "Radar calibration check", "Anchor chain inspection", "Windlass service",
        "Teak cleaning & oiling", "Stainless steel polish", "Bleed diesel system", "Change primary fuel filter",
        "Check hose clamps", "Replace air filter", "Inspect injection pump and injectors"})
    EXPECT_NE(templateTitled(title), nullptr) << title;
  // Tasks and backups made years ago refer to these identities.
  EXPECT_EQ(templateTitled("LIFE RAFT service")->id, templateTitled("Life raft service")->id);
  EXPECT_EQ(templateTitled("No such job"), nullptr);
}

TEST(TemplateCatalogue, IsSearchedByWordsAndCategory) {
  const auto found = findTemplates("generator OIL");
  ASSERT_FALSE(found.empty());
  EXPECT_EQ(found.front()->title, "Generator oil & filter change");
  for (const TaskTemplate* made : findTemplates("", TaskCategory::medical))
    EXPECT_EQ(made->category, TaskCategory::medical);
  EXPECT_TRUE(findTemplates("first aid", TaskCategory::engine).empty());
  EXPECT_EQ(findTemplates("").size(), templateCatalogue().size());
}

TEST(TemplateCatalogue, ATaskStartsFromTheChosenDateAndTheCategorysMeter) {
  const Timestamp start = at("2026-10-20T08:00:00Z");
  const Calendar rome = zone("Europe/Rome");
  const Vessel vessel = yacht();
  const TaskTemplate& oil = *templateTitled("Generator oil & filter change");
  EXPECT_EQ(repeatText(oil), "Every 365 days or 200 h");
  EXPECT_EQ(proposedHoursText(oil), "Set to current + 200 h");

  const MaintenanceTask fresh = taskFromTemplate(oil, vessel, {.startDate = start}, rome);
  EXPECT_EQ(fresh.vesselID, vessel.id);
  EXPECT_FALSE(fresh.id.isNil());
  EXPECT_EQ(fresh.title, oil.title);
  EXPECT_EQ(fresh.notes, oil.notes);
  EXPECT_EQ(fresh.category, oil.category);
  EXPECT_EQ(fresh.triggerType, TriggerType::both);
  EXPECT_EQ(fresh.hourSource, HourSource::generator1);
  EXPECT_EQ(fresh.dueAtEngineHours, 4200);
  EXPECT_EQ(fresh.dueDate, rome.addDays(start, 365));
  EXPECT_TRUE(repeats(fresh));

  const TemplateStart known{.startDate = start,
                            .from = TemplateStart::From::lastDone,
                            .lastDone = at("2026-06-20T08:00:00Z"),
                            .lastDoneHours = 3900};
  const MaintenanceTask going = taskFromTemplate(oil, vessel, known, rome);
  EXPECT_EQ(going.dueAtEngineHours, 4100);
  EXPECT_EQ(going.dueDate, rome.addDays(*known.lastDone, 365));
}

TEST(TemplateCatalogue, WhatWasNeverNotedIsDueNowNotInAYear) {
  const Timestamp start = at("2026-10-20T08:00:00Z");
  const StatusHorizon horizon(start, Calendar::utc());
  const TemplateStart notKnown{.startDate = start, .from = TemplateStart::From::notKnown};
  for (const TaskTemplate& made : templateCatalogue()) {
    const MaintenanceTask task = taskFromTemplate(made, yacht(), notKnown, Calendar::utc());
    EXPECT_LE(taskStatus(task, yacht().reading(task.hourSource), horizon), TaskStatus::dueSoon) << made.title;
  }
}

}  // namespace
}  // namespace thalvorn
