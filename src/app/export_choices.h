#pragma once

#include <QString>

#include "app/app_controller.h"
#include "base/calendar.h"
#include "base/csv.h"

/// How files leave the program: as the user chose in the settings, under names that sort.
namespace thalvorn::app {

inline constexpr const char16_t* kCsvSeparatorKey = u"thalvorn.csvSeparator";  ///< "comma", "semicolon" or "tab"
inline constexpr const char16_t* kPaperSizeKey = u"thalvorn.paperSize";        ///< "a4" or "letter"

/// The user's choice; where none was made, semicolons and decimal commas in countries that write them.
CsvFormat csvFormat(const PreferenceStore& preferences);

/// "a4" or "letter"; where none was chosen, what the user's country prints on.
QString paperSize(const PreferenceStore& preferences);

/// "work-list-meridian-2026-11-21.pdf": what it is, of which vessel, of which day; empty parts are left out.
QString fileNameFor(const QString& what, const QString& vessel, Timestamp now, const Calendar& calendar,
                    const QString& ending);

/// The path with the ending, unless it has one.
QString withEnding(const QString& path, const QString& ending);

}  // namespace thalvorn::app
