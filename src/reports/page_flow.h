#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "reports/document/document.h"
#include "reports/page.h"
#include "reports/typesetter.h"

namespace thalvorn {

/// The pages of a layout while they fill from top to bottom, each with its head; the blocks of a document are set
/// through it.
class PageFlow {
 public:
  PageFlow(const Document& document, const Typesetter& typesetter, PagedLayout& layout);

  double left() const { return paper::sideMargin; }
  double width() const { return layout_.width - 2 * paper::sideMargin; }
  /// Where the next block begins.
  double y() const { return y_; }
  double space() const { return bottom() - y_; }
  double bottom() const;
  /// What a page after the first has room for.
  double fullPage() const;
  bool atTop() const { return y_ <= top_; }

  void newPage();
  /// Starts a new page unless `height` fits on this one; a height no page has room for starts at most one.
  void ensure(double height);
  void advance(double by) { y_ += by; }
  /// Leaves a gap between blocks, none at the top of a page.
  void gap(double by);

  Page& page() { return layout_.pages.back(); }
  void bookmark(std::string title, int level);
  /// Keeps a text as long as the layout.
  std::string_view keep(std::string text);

  const Typesetter& typesetter() const { return typesetter_; }

  /// Sets one line of a style with its top at `y`; `width` is the room it is aligned in.
  void putLine(const TextLine& line, double x, double y, double width, paper::TextStyle style, Alignment alignment,
               bool struck = false);
  /// Measures and sets a text that is one line.
  void putText(std::string_view text, double x, double y, double width, paper::TextStyle style,
               Alignment alignment = Alignment::left);
  void putRule(double x, double y, double width, paper::LineStyle style);

  /// Sets the foot of every page, now that their number is known.
  void finish();

 private:
  void measureFoot();
  double footHeight() const;
  void firstHead();
  void runningHead();
  void particularsBox(const VesselParticulars& particulars);

  const Document& document_;
  const Typesetter& typesetter_;
  PagedLayout& layout_;
  double y_ = 0;
  double top_ = 0;
  double runningTop_ = 0;
  std::vector<TextLine> runningLines_;
  std::string_view runningParticulars_;
  std::vector<TextLine> footLines_;
  std::string pageLabel_;  ///< of the foot, up to the page's number
};

/// Sets labels and values side by side in columns; one call per row of the grid.
class FieldRows {
 public:
  FieldRows(const Typesetter& typesetter, const std::vector<LabeledText>& fields, int columns, double width);
  std::size_t count() const { return rows_.size(); }
  double height(std::size_t row) const { return rows_[row].height; }
  double height() const;
  void put(PageFlow& flow, std::size_t row, double x, double y) const;

 private:
  struct Field {
    std::vector<TextLine> label;
    std::vector<TextLine> value;
  };
  struct Row {
    std::vector<Field> fields;
    double height = 0;
  };
  std::vector<Row> rows_;
  double labelWidth_ = 0;
  double columnWidth_ = 0;
};

}  // namespace thalvorn
