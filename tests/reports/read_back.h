#pragma once

#include <QByteArray>
#include <QStringList>
#include <string>
#include <string_view>
#include <vector>

#include "reports/document/document.h"

/// Reports as they leave the program and as other programs read them.
namespace thalvorn {

/// The PDF file of a report. The running test fails when it cannot be made or when a character of it would be blank on
/// paper.
QByteArray pdfOf(const Document& document);

/// What another program prints about a PDF file; begins with "not read" when it fails.
std::string outputOf(const QString& program, const QStringList& options, const QByteArray& pdf);

/// The text of a PDF file as `pdftotext` finds it, page by page with a form feed behind each.
std::string textOf(const QByteArray& pdf, const QStringList& options = {QStringLiteral("-layout")});

/// The text of a report on paper, as `pdfOf` and `textOf` have it.
std::string printedText(const Document& document);

/// Runs of blanks as one, so that what stands side by side can be named.
std::string oneBlank(const std::string& text);

/// Every text stands on the paper, one behind the other; the running test fails when one does not.
void expectInOrder(const std::string& printed, const std::vector<std::string>& texts);

std::size_t count(std::string_view text, std::string_view part);

}  // namespace thalvorn
