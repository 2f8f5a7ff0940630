#pragma once

#include <QUrl>
#include <QVariant>
#include <expected>
#include <string>

#include "core/csv_cells.h"

namespace thalvorn::app {

/// The text of a spreadsheet file; the error is for the user.
std::expected<std::string, QString> readSpreadsheet(const QUrl& file);

/// What was read, for the question whether to import it: {summary, problem, problems, count}.
QVariantMap describeImport(std::size_t fresh, std::size_t known, std::size_t skipped,
                           const std::vector<CsvProblem>& problems, const QString& plural);

}  // namespace thalvorn::app
