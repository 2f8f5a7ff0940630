#include "reports/page_flow.h"

#include <fmt/format.h>

#include <algorithm>

#include "reports/document/document_text.h"

namespace thalvorn {
namespace {

using paper::LineStyle;
using paper::TextStyle;

constexpr std::pair<double, double> a4 = {595.276, 841.89};
constexpr std::pair<double, double> letter = {612, 792};
constexpr double columnGap = 16;
constexpr double labelGap = 8;
constexpr double oneLine = 1e6;  ///< wider than any text
constexpr std::string_view footSeparator = "   |   ";

std::string joined(const std::vector<std::string_view>& parts, std::string_view separator) {
  std::string text;
  for (const auto part : parts) {
    if (part.empty()) continue;
    if (!text.empty()) text += separator;
    text += part;
  }
  return text;
}

/// The bars of the maker's mark, as tall as the title beside them.
void putMark(Page& page, double x, double y) {
  for (int bar = 0; bar < 5; ++bar) {
    const auto at = static_cast<float>(y + bar * 3.3);
    page.lines.push_back({static_cast<float>(x), at, static_cast<float>(x + 13), at, LineStyle::mark});
  }
}

}  // namespace

PageFlow::PageFlow(const Document& document, const Typesetter& typesetter, PagedLayout& layout)
    : document_(document), typesetter_(typesetter), layout_(layout) {
  const auto [shorter, longer] = document.paper == PaperSize::a4 ? a4 : letter;
  const bool portrait = document.orientation == Orientation::portrait;
  layout_.width = portrait ? shorter : longer;
  layout_.height = portrait ? longer : shorter;

  typesetter_.wrap(keep(joined({document.title, document.vesselName, document.period}, "  ·  ")),
                   TextStyle::captionStrong, width(), runningLines_);
  if (document.particulars) runningParticulars_ = keep(particularsLine(*document.particulars));
  runningTop_ = paper::topMargin +
                static_cast<double>(runningLines_.size()) * paper::facts(TextStyle::captionStrong).lineHeight +
                (runningParticulars_.empty() ? 0 : paper::facts(TextStyle::caption).lineHeight) + 10;
  measureFoot();
  layout_.pages.emplace_back();
  firstHead();
  top_ = y_;
}

double PageFlow::bottom() const { return layout_.height - paper::bottomMargin - footHeight(); }

double PageFlow::fullPage() const { return bottom() - runningTop_; }

void PageFlow::newPage() {
  layout_.pages.emplace_back();
  runningHead();
  y_ = top_ = runningTop_;
}

void PageFlow::ensure(double height) {
  if (height > space() && !(atTop() && layout_.pages.size() > 1)) newPage();
}

void PageFlow::gap(double by) {
  if (!atTop()) y_ += by;
}

void PageFlow::bookmark(std::string title, int level) {
  layout_.bookmarks.push_back({std::move(title), layout_.pages.size() - 1, y_, level});
}

std::string_view PageFlow::keep(std::string text) { return layout_.texts.emplace_back(std::move(text)); }

void PageFlow::putLine(const TextLine& line, double x, double y, double room, TextStyle style, Alignment alignment,
                       bool struck) {
  const auto& facts = paper::facts(style);
  const double spare = room - line.width;
  const double shift = alignment == Alignment::right ? spare : alignment == Alignment::center ? spare / 2 : 0;
  // The baseline that sets capitals in the middle of the line: they are 0.73 em high.
  const double baseline = y + (facts.lineHeight + 0.73 * facts.size) / 2;
  page().texts.push_back({line.text, static_cast<float>(x + shift), static_cast<float>(baseline),
                          static_cast<float>(line.width), style, line.plain, struck});
}

void PageFlow::putText(std::string_view text, double x, double y, double room, TextStyle style, Alignment alignment) {
  std::vector<TextLine> lines;
  typesetter_.wrap(text, style, oneLine, lines);
  if (!lines.empty()) putLine(lines.front(), x, y, room, style, alignment);
}

void PageFlow::putRule(double x, double y, double ruleWidth, LineStyle style) {
  page().lines.push_back(
      {static_cast<float>(x), static_cast<float>(y), static_cast<float>(x + ruleWidth), static_cast<float>(y), style});
}

void PageFlow::firstHead() {
  const auto& title = paper::facts(TextStyle::title);
  const auto& subtitle = paper::facts(TextStyle::subtitle);
  std::vector<std::string_view> notes;
  if (!document_.generatedLine.empty() && document_.headLine.empty()) notes.push_back(document_.generatedLine);
  notes.insert(notes.end(), document_.headNotes.begin(), document_.headNotes.end());
  double notesWidth = 0;
  for (const auto note : notes) notesWidth = std::max(notesWidth, typesetter_.width(note, TextStyle::subtitle));
  notesWidth = std::min(notesWidth, width() / 2);

  constexpr double markWidth = 22;
  double y = paper::topMargin;
  putMark(page(), left(), y + 3);
  std::vector<TextLine> lines;
  const double titleWidth = width() - markWidth - notesWidth - columnGap;
  typesetter_.wrap(document_.title, TextStyle::title, titleWidth, lines);
  for (const auto& line : lines) {
    putLine(line, left() + markWidth, y, titleWidth, TextStyle::title, Alignment::left);
    y += title.lineHeight;
  }
  lines.clear();
  const auto headLine = document_.headLine.empty() ? keep(joined({document_.vesselName, document_.period}, "  ·  "))
                                                   : std::string_view(document_.headLine);
  typesetter_.wrap(headLine, TextStyle::subtitle, width() - notesWidth - columnGap, lines);
  y += 2;
  for (const auto& line : lines) {
    putLine(line, left(), y, width(), TextStyle::subtitle, Alignment::left);
    y += subtitle.lineHeight;
  }
  double noteY = paper::topMargin + 1;
  for (const auto note : notes) {
    lines.clear();
    typesetter_.wrap(note, TextStyle::subtitle, notesWidth + 0.01, lines);
    for (const auto& line : lines) {
      putLine(line, left(), noteY, width(), TextStyle::subtitle, Alignment::right);
      noteY += subtitle.lineHeight;
    }
  }
  y_ = std::max(y, noteY) + 8;
  if (document_.particulars) particularsBox(*document_.particulars);
}

void PageFlow::particularsBox(const VesselParticulars& particulars) {
  layout_.particulars = labeled(particulars);
  const FieldRows rows(typesetter_, layout_.particulars, 3, width() - 2 * paper::framePadding);
  const double height = rows.height() + 2 * paper::framePadding - 2;
  page().frames.push_back(
      {static_cast<float>(left()), static_cast<float>(y_), static_cast<float>(width()), static_cast<float>(height), 3});
  double y = y_ + paper::framePadding - 1;
  for (std::size_t row = 0; row < rows.count(); ++row) {
    rows.put(*this, row, left() + paper::framePadding, y);
    y += rows.height(row);
  }
  y_ += height + paper::blockGap;
}

void PageFlow::runningHead() {
  double y = paper::topMargin - 4;
  for (const auto& line : runningLines_) {
    putLine(line, left(), y, width(), TextStyle::captionStrong, Alignment::left);
    y += paper::facts(TextStyle::captionStrong).lineHeight;
  }
  putText(runningParticulars_, left(), y, width(), TextStyle::caption);
}

void PageFlow::measureFoot() {
  const std::string_view label = document_.pageLabel.empty() ? document_.title : document_.pageLabel;
  pageLabel_ = joined({label, "Page "}, footSeparator);
  const auto numberWidth = [&] { return typesetter_.width(pageLabel_ + "8888 of 8888", TextStyle::caption); };
  if (numberWidth() > width() / 2) pageLabel_ = "Page ";
  const double room = width() - numberWidth() - columnGap;
  auto line = document_.footLine;
  if (line.empty()) {
    const auto owner = joined({document_.footer, document_.vesselName}, footSeparator);
    line = joined({owner, document_.generatedLine}, footSeparator);
    if (typesetter_.width(line, TextStyle::caption) > room) line = joined({owner, document_.generatedLine}, "\n");
  }
  typesetter_.wrap(keep(std::move(line)), TextStyle::caption, room, footLines_);
}

double PageFlow::footHeight() const {
  const auto lines = static_cast<double>(std::max<std::size_t>(footLines_.size(), 1));
  return paper::footHeight + (lines - 1) * paper::facts(TextStyle::caption).lineHeight;
}

void PageFlow::finish() {
  const auto& facts = paper::facts(TextStyle::caption);
  const double rule = layout_.height - paper::bottomMargin - footHeight() + 8;
  const auto pages = layout_.pages.size();
  const auto put = [&](Page& page, const TextLine& line, double x, double top) {
    page.texts.push_back({line.text, static_cast<float>(x),
                          static_cast<float>(top + (facts.lineHeight + 0.73 * facts.size) / 2),
                          static_cast<float>(line.width), TextStyle::caption, line.plain, false});
  };
  for (std::size_t i = 0; i < pages; ++i) {
    auto& page = layout_.pages[i];
    page.lines.push_back({static_cast<float>(left()), static_cast<float>(rule), static_cast<float>(left() + width()),
                          static_cast<float>(rule), LineStyle::hairline});
    double top = rule + 5;
    for (const auto& line : footLines_) {
      put(page, line, left(), top);
      top += facts.lineHeight;
    }
    std::vector<TextLine> number;
    typesetter_.wrap(keep(fmt::format("{}{} of {}", pageLabel_, i + 1, pages)), TextStyle::caption, oneLine, number);
    for (const auto& line : number) put(page, line, left() + width() - line.width, rule + 5);
  }
}

FieldRows::FieldRows(const Typesetter& typesetter, const std::vector<LabeledText>& fields, int columns, double width) {
  const auto perRow = static_cast<std::size_t>(std::max(1, columns));
  columnWidth_ = (width - columnGap * static_cast<double>(perRow - 1)) / static_cast<double>(perRow);
  for (const auto& field : fields) labelWidth_ = std::max(labelWidth_, typesetter.width(field.label, TextStyle::muted));
  labelWidth_ = std::min(labelWidth_ + labelGap, columnWidth_ * 0.45);
  const double lineHeight = paper::facts(TextStyle::body).lineHeight;
  for (std::size_t from = 0; from < fields.size(); from += perRow) {
    Row row;
    std::size_t most = 1;
    for (std::size_t i = from; i < std::min(from + perRow, fields.size()); ++i) {
      Field field;
      typesetter.wrap(fields[i].label, TextStyle::muted, labelWidth_ - labelGap / 2, field.label);
      typesetter.wrap(fields[i].value, TextStyle::strong, columnWidth_ - labelWidth_, field.value);
      most = std::max({most, field.label.size(), field.value.size()});
      row.fields.push_back(std::move(field));
    }
    row.height = static_cast<double>(most) * lineHeight + 1.6;
    rows_.push_back(std::move(row));
  }
}

double FieldRows::height() const {
  double sum = 0;
  for (const auto& row : rows_) sum += row.height;
  return sum;
}

void FieldRows::put(PageFlow& flow, std::size_t row, double x, double y) const {
  const double lineHeight = paper::facts(TextStyle::body).lineHeight;
  for (const auto& field : rows_[row].fields) {
    for (std::size_t i = 0; i < field.label.size(); ++i) {
      flow.putLine(field.label[i], x, y + static_cast<double>(i) * lineHeight, labelWidth_, TextStyle::muted,
                   Alignment::left);
    }
    for (std::size_t i = 0; i < field.value.size(); ++i) {
      flow.putLine(field.value[i], x + labelWidth_, y + static_cast<double>(i) * lineHeight, columnWidth_ - labelWidth_,
                   TextStyle::strong, Alignment::left);
    }
    x += columnWidth_ + columnGap;
  }
}

}  // namespace thalvorn
