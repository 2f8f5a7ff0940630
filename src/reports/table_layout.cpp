#include <algorithm>
#include <numeric>
#include <span>

#include "reports/page_layout.h"

namespace thalvorn {
namespace {

using paper::LineStyle;
using paper::TextStyle;

constexpr double groupPadding = 3.5;
constexpr double narrowestColumn = 40;

/// A row cut into lines: cell by cell, then the remarks below them.
struct RowLines {
  struct Line {
    TextLine text;
    TextStyle style = TextStyle::body;
  };
  std::vector<std::vector<Line>> cells;
  std::vector<Line> details;
  std::vector<double> detailIndents;
  std::size_t cellLines = 0;

  std::size_t count() const { return cellLines + details.size(); }
};

class TableSetter {
 public:
  TableSetter(PageFlow& flow, const Table& table, double tail) : flow_(flow), table_(table), tail_(tail) {
    findWidths();
    for (const auto& column : table_.columns) {
      auto& lines = headLines_.emplace_back();
      flow_.typesetter().wrap(column.title, TextStyle::columnHead, textWidth(headLines_.size() - 1), lines);
      headRows_ = std::max(headRows_, lines.size());
    }
    rowLines_.cells.resize(table_.columns.size());
    for (const auto& row : table_.rows) {
      for (const auto& detail : row.details) {
        if (detail.label.empty() || detail.label == widestLabel_) continue;
        const double width = flow_.typesetter().width(detail.label, TextStyle::muted) + 8;
        if (width > detailIndent_) widestLabel_ = detail.label;
        detailIndent_ = std::min(std::max(detailIndent_, width), flow_.width() / 4);
      }
    }
  }

  bool put(const ReportProgress& progress) {
    flow_.ensure(headHeight() + 2 * lineHeight() + 2 * paper::rowPadding);
    putHead();
    if (table_.rows.empty()) putEmpty();
    const TableRow* pendingGroup = nullptr;
    for (std::size_t i = 0; i < table_.rows.size(); ++i) {
      if (progress && i % 256 == 0 && !progress(static_cast<double>(i) / static_cast<double>(table_.rows.size()))) {
        return false;
      }
      const auto& row = table_.rows[i];
      if (row.kind == TableRow::Kind::group) {
        if (pendingGroup) putGroup(*pendingGroup);
        pendingGroup = &row;
        continue;
      }
      cut(row);
      makeRoom(pendingGroup ? groupHeight() : 0, i + 1 == table_.rows.size() ? tail_ : 0);
      if (pendingGroup) putGroup(*pendingGroup);
      pendingGroup = nullptr;
      putRow(row);
    }
    if (pendingGroup) putGroup(*pendingGroup);
    flow_.advance(paper::blockGap);
    return true;
  }

 private:
  static double lineHeight() { return paper::facts(TextStyle::body).lineHeight; }
  static double groupHeight() { return paper::facts(TextStyle::strong).lineHeight + 2 * groupPadding + 2; }
  double headHeight() const {
    return static_cast<double>(headRows_) * paper::facts(TextStyle::columnHead).lineHeight + 8;
  }
  double textWidth(std::size_t column) const { return widths_[column] - 2 * paper::cellPadding; }
  double heightOf(std::size_t lines) const { return static_cast<double>(lines) * lineHeight() + 2 * paper::rowPadding; }

  static TextStyle styleOf(const TableRow& row, const Cell& cell) {
    return cell.strong || row.kind == TableRow::Kind::total ? TextStyle::strong : TextStyle::body;
  }

  /// What a column asks for: at most its widest cell, at least its longest word that should not be broken.
  double naturalWidth(std::size_t column) const {
    const auto& typesetter = flow_.typesetter();
    double widest = typesetter.width(table_.columns[column].title, TextStyle::columnHead);
    for (const auto& row : table_.rows) {
      if (row.kind == TableRow::Kind::group || column >= row.cells.size()) continue;
      const auto& cell = row.cells[column];
      const double indent = cell.tick == TickBox::none ? 0 : paper::tickBoxIndent;
      if (!cell.text.empty()) widest = std::max(widest, indent + typesetter.width(cell.text, styleOf(row, cell)));
      if (indent > 0 && cell.text.empty()) widest = std::max(widest, paper::tickBoxSize);
      if (!cell.note.empty()) widest = std::max(widest, typesetter.width(cell.note, TextStyle::caption));
    }
    return widest + 2 * paper::cellPadding + 0.5;
  }

  void findWidths() {
    const std::size_t count = table_.columns.size();
    widths_.assign(count, 0);
    std::vector<double> fixed(count, 0);
    double weights = 0;
    double wrapping = 0;
    for (std::size_t i = 0; i < count; ++i) {
      if (table_.columns[i].wraps) {
        weights += table_.columns[i].weight;
        ++wrapping;
      } else {
        fixed[i] = naturalWidth(i);
      }
    }
    const double available = flow_.width() - wrapping * narrowestColumn;
    const double asked = std::accumulate(fixed.begin(), fixed.end(), 0.0);
    // Columns that ask for more than there is are narrowed alike, and then wrap too.
    const double share = asked > available ? available / asked : 1;
    double rest = flow_.width() - asked * share;
    for (std::size_t i = 0; i < count; ++i) {
      widths_[i] = table_.columns[i].wraps ? rest * table_.columns[i].weight / weights : fixed[i] * share;
    }
    if (wrapping == 0 && asked > 0) {
      for (auto& width : widths_) width *= flow_.width() / (asked * share);
    }
  }

  /// Cuts the texts of a row into lines as wide as their columns.
  void cut(const TableRow& row) {
    const auto& typesetter = flow_.typesetter();
    rowLines_.cellLines = 1;
    const auto take = [&](std::vector<RowLines::Line>& into, TextStyle style) {
      for (const auto& line : wrapped_) into.push_back({line, style});
      wrapped_.clear();
    };
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
      auto& lines = rowLines_.cells[i];
      lines.clear();
      if (i >= row.cells.size()) continue;
      const auto& cell = row.cells[i];
      const double room = textWidth(i) - (cell.tick == TickBox::none ? 0 : paper::tickBoxIndent);
      typesetter.wrap(cell.text, styleOf(row, cell), room, wrapped_);
      take(lines, styleOf(row, cell));
      typesetter.wrap(cell.note, TextStyle::caption, room, wrapped_);
      take(lines, TextStyle::caption);
      rowLines_.cellLines = std::max(rowLines_.cellLines, lines.size());
    }
    rowLines_.details.clear();
    rowLines_.detailIndents.clear();
    const double whole = flow_.width() - 2 * paper::cellPadding;
    for (const auto& detail : row.details) {
      const double indent = detail.label.empty() ? 0 : detailIndent_;
      typesetter.wrap(detail.value, TextStyle::body, whole - indent, wrapped_);
      if (wrapped_.empty()) wrapped_.push_back({"", 0, true});
      bool first = true;
      for (const auto& line : wrapped_) {
        rowLines_.details.push_back({line, TextStyle::body});
        rowLines_.detailIndents.push_back(indent);
        if (first) detailLabels_.push_back({rowLines_.details.size() - 1, detail.label});
        first = false;
      }
      wrapped_.clear();
    }
  }

  void makeRoom(double before, double after) {
    const double height = before + heightOf(rowLines_.count());
    if (height + after <= flow_.space()) return;
    if (height <= flow_.space() && after > flow_.fullPage() / 2) return;
    // Not on this page; and when on none, as much as there is room for, if that is worth starting.
    const bool fitsOnOne = height <= flow_.fullPage() - headHeight() - (group_ ? groupHeight() : 0);
    if (fitsOnOne || flow_.space() < before + heightOf(3)) continueOnNewPage(before == 0);
  }

  void continueOnNewPage(bool withGroup) {
    flow_.newPage();
    putHead();
    if (withGroup && group_) putGroupLine(*group_, true);
  }

  void putRow(const TableRow& row) {
    if (row.kind == TableRow::Kind::total) {
      flow_.putRule(flow_.left(), flow_.y(), flow_.width(), LineStyle::rule);
    }
    std::size_t from = 0;
    const std::size_t count = rowLines_.count();
    while (from < count) {
      const auto room =
          static_cast<std::size_t>(std::max(1.0, (flow_.space() - 2 * paper::rowPadding + 0.01) / lineHeight()));
      const std::size_t to = std::min(count, from + room);
      putLines(row, from, to);
      from = to;
      if (from < count) continueOnNewPage(true);
    }
    detailLabels_.clear();
  }

  void putLines(const TableRow& row, std::size_t from, std::size_t to) {
    const double top = flow_.y() + paper::rowPadding;
    const auto yOf = [&](std::size_t line) { return top + static_cast<double>(line - from) * lineHeight(); };
    double x = flow_.left();
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
      const auto& lines = rowLines_.cells[i];
      const bool ticked = i < row.cells.size() && row.cells[i].tick != TickBox::none;
      const double indent = ticked ? paper::tickBoxIndent : 0;
      if (ticked && from == 0) {
        const double y = top + (lineHeight() - paper::tickBoxSize) / 2;
        flow_.page().ticks.push_back(
            {static_cast<float>(x + paper::cellPadding), static_cast<float>(y), row.cells[i].tick == TickBox::ticked});
      }
      for (std::size_t line = from; line < std::min(to, lines.size()); ++line) {
        const bool struck = row.cells[i].struck && lines[line].style != TextStyle::caption;
        flow_.putLine(lines[line].text, x + paper::cellPadding + indent, yOf(line), textWidth(i) - indent,
                      lines[line].style, table_.columns[i].alignment, struck);
      }
      x += widths_[i];
    }
    const double left = flow_.left() + paper::cellPadding;
    for (std::size_t line = std::max(from, rowLines_.cellLines); line < to; ++line) {
      const std::size_t detail = line - rowLines_.cellLines;
      flow_.putLine(rowLines_.details[detail].text, left + rowLines_.detailIndents[detail], yOf(line), flow_.width(),
                    TextStyle::body, Alignment::left);
    }
    for (const auto& [detail, label] : detailLabels_) {
      const std::size_t line = rowLines_.cellLines + detail;
      if (line >= from && line < to) flow_.putText(label, left, yOf(line), flow_.width(), TextStyle::muted);
    }
    flow_.advance(heightOf(to - from));
    flow_.putRule(flow_.left(), flow_.y(), flow_.width(), LineStyle::hairline);
  }

  void putHead() {
    const auto& facts = paper::facts(TextStyle::columnHead);
    double x = flow_.left();
    for (std::size_t i = 0; i < table_.columns.size(); ++i) {
      double y = flow_.y() + 3 + static_cast<double>(headRows_ - headLines_[i].size()) * facts.lineHeight;
      for (const auto& line : headLines_[i]) {
        flow_.putLine(line, x + paper::cellPadding, y, textWidth(i), TextStyle::columnHead,
                      table_.columns[i].alignment);
        y += facts.lineHeight;
      }
      x += widths_[i];
    }
    flow_.advance(headHeight());
    flow_.putRule(flow_.left(), flow_.y(), flow_.width(), LineStyle::rule);
  }

  void putEmpty() {
    flow_.putText(table_.emptyText, flow_.left() + paper::cellPadding, flow_.y() + paper::rowPadding,
                  flow_.width() - 2 * paper::cellPadding, TextStyle::muted);
    flow_.advance(heightOf(1));
    flow_.putRule(flow_.left(), flow_.y(), flow_.width(), LineStyle::hairline);
  }

  void putGroup(const TableRow& row) {
    if (groupHeight() > flow_.space()) continueOnNewPage(false);
    group_ = &row;
    if (!row.cells.empty()) flow_.bookmark(row.cells.front().text, 1);
    putGroupLine(row, false);
  }

  void putGroupLine(const TableRow& row, bool continued) {
    if (row.cells.empty()) return;
    const auto& cell = row.cells.front();
    const double x = flow_.left() + paper::cellPadding;
    const double y = flow_.y() + groupPadding + 2;
    const double room = flow_.width() - 2 * paper::cellPadding;
    flow_.putText(cell.text, x, y, room, TextStyle::strong);
    const auto note = continued ? std::string_view("continued") : std::string_view(cell.note);
    const double used = flow_.typesetter().width(cell.text, TextStyle::strong) + 6;
    flow_.putText(note, x + used, y, room - used, TextStyle::muted);
    flow_.advance(groupHeight());
    flow_.putRule(flow_.left(), flow_.y(), flow_.width(), LineStyle::hairline);
  }

  PageFlow& flow_;
  const Table& table_;
  double tail_;
  std::vector<double> widths_;
  std::vector<std::vector<TextLine>> headLines_;
  std::size_t headRows_ = 1;
  RowLines rowLines_;
  std::vector<TextLine> wrapped_;
  std::vector<std::pair<std::size_t, std::string_view>> detailLabels_;
  double detailIndent_ = 0;  // of the remarks below a row, behind their labels
  std::string_view widestLabel_;
  const TableRow* group_ = nullptr;
};

}  // namespace

bool putTable(PageFlow& flow, const Table& table, double tail, const ReportProgress& progress) {
  return TableSetter(flow, table, tail).put(progress);
}

}  // namespace thalvorn
