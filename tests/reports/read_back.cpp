#include "read_back.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "reports/pdf_renderer.h"

namespace thalvorn {

QByteArray pdfOf(const Document& document) {
  const auto report = PagedReport::layOut(document);
  if (!report) {
    ADD_FAILURE() << report.error().message.toStdString();
    return {};
  }
  EXPECT_EQ(report->missingCharacters().toStdString(), "") << "blank on paper in " << document.title;
  const auto pdf = report->pdf();
  EXPECT_TRUE(pdf) << (pdf ? "" : pdf.error().message.toStdString());
  return pdf.value_or(QByteArray());
}

std::string outputOf(const QString& program, const QStringList& options, const QByteArray& pdf) {
  QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("report.pdf"));
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size()) return "not written";
  file.close();
  QProcess process;
  const bool toOutput = program == QLatin1String("pdftotext");
  process.start(program, options + QStringList(path) + QStringList(toOutput ? 1 : 0, QStringLiteral("-")));
  if (!process.waitForFinished() || process.exitCode() != 0)
    return "not read: " + process.readAllStandardError().toStdString();
  return process.readAllStandardOutput().toStdString();
}

std::string textOf(const QByteArray& pdf, const QStringList& options) {
  return outputOf(QStringLiteral("pdftotext"), options, pdf);
}

std::string printedText(const Document& document) { return textOf(pdfOf(document)); }

std::string oneBlank(const std::string& text) {
  std::string out;
  for (const char c : text)
    if (c != ' ' || !out.ends_with(' ')) out += c;
  return out;
}

void expectInOrder(const std::string& printed, const std::vector<std::string>& texts) {
  std::size_t from = 0;
  for (const std::string& text : texts) {
    const auto found = printed.find(text, from);
    EXPECT_NE(found, std::string::npos) << "“" << text << "” is missing, or stands too early, in\n" << printed;
    if (found != std::string::npos) from = found + text.size();
  }
}

std::size_t count(std::string_view text, std::string_view part) {
  std::size_t found = 0;
  for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++found;
  return found;
}

}  // namespace thalvorn
