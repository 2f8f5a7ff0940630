#include "core/task_csv_import.h"

namespace thalvorn {

const TaskCsvTexts& taskCsvTexts() {
  static constexpr TaskCsvTexts texts{
      .referenceTitle = "FORMAT REFERENCE",
      .reference =
          "Columns (header row required):\n"
          "  title, category, triggerType, recurringDays, dueAtHours, recurringHours, hourSource, notes\n"
          "\n"
          "triggerType values:  date  |  hours  |  both\n"
          "hourSource values:   Engine 1  |  Engine 2  |  Engine 3  |  Generator 1  |  Generator 2  |  Hydraulic\n"
          "category values:     Engine | Hull | Rigging | Electrical | Safety | Plumbing | Sails | Other\n"
          "\n"
          "Only title and category are required. All other columns are optional.",
      .sample =
          "title,category,triggerType,recurringDays,dueAtHours,recurringHours,hourSource,notes\n"
          "Engine oil change,Engine,hours,,,100,Engine 1,SAE 15W-40\n"
          "Bilge pump test,Safety,date,30,,,,Check auto and manual\n"
          "Impeller replacement,Engine,both,365,500,300,Engine 1,Carry spare\n"
          "Antifouling paint,Hull,date,365,,,,Haul out required\n"
          "Standing rigging check,Rigging,date,180,,,,Check swages and terminals"};
  return texts;
}

}  // namespace thalvorn
