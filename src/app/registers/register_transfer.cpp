#include "app/registers/register_transfer.h"

#include <QFile>

#include "app/text.h"

namespace thalvorn::app {

std::expected<std::string, QString> readSpreadsheet(const QUrl& file) {
  QFile in(file.toLocalFile());
  if (!in.open(QIODevice::ReadOnly))
    return std::unexpected(QStringLiteral("Could not read CSV file. ") + in.errorString());
  return csvTextFromBytes(in.readAll().toStdString());
}

QVariantMap describeImport(std::size_t fresh, std::size_t known, std::size_t skipped,
                           const std::vector<CsvProblem>& problems, const QString& plural) {
  if (fresh == 0 && known == 0 && skipped == 0) {
    return {{QStringLiteral("problem"),
             problems.empty() ? QStringLiteral("The file holds no %1.").arg(plural) : toQt(problems.front().message)}};
  }
  QStringList lines;
  for (const CsvProblem& problem : problems)
    lines << QStringLiteral("Line %1: %2").arg(problem.line).arg(toQt(problem.message));
  return {{QStringLiteral("summary"),
           QStringLiteral("%1 new, %2 already in the register, %3 skipped").arg(fresh).arg(known).arg(skipped)},
          {QStringLiteral("problems"), lines},
          {QStringLiteral("count"), static_cast<int>(fresh)}};
}

}  // namespace thalvorn::app
