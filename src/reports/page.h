#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "reports/document/document.h"
#include "reports/paper_style.h"

/// A laid-out report: what stands where on which page, in points from the page's top left corner. The texts are views
/// into the document and into the layout's own store; both must outlive the pages.
namespace thalvorn {

struct TextItem {
  std::string_view text;
  float x = 0;
  float baseline = 0;
  float width = 0;
  paper::TextStyle style = paper::TextStyle::body;
  bool plain = true;
  bool struck = false;
};

struct LineItem {
  float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  paper::LineStyle style = paper::LineStyle::hairline;
};

struct FrameItem {
  float x = 0, y = 0, width = 0, height = 0;
  float radius = 0;
};

struct TickItem {
  float x = 0, y = 0;
  bool ticked = false;
};

struct PhotoItem {
  const Photo* photo = nullptr;
  float x = 0, y = 0, width = 0, height = 0;
};

struct Page {
  std::vector<TextItem> texts;
  std::vector<LineItem> lines;
  std::vector<FrameItem> frames;
  std::vector<TickItem> ticks;
  std::vector<PhotoItem> photos;
};

struct Bookmark {
  std::string title;
  std::size_t page = 0;
  double y = 0;   ///< from the page's top, points
  int level = 0;  ///< 0 for sections, 1 for groups within them
};

struct PagedLayout {
  double width = 0;  ///< of a page, points
  double height = 0;
  std::vector<Page> pages;
  std::vector<Bookmark> bookmarks;
  std::deque<std::string> texts;         ///< texts that are not in the document
  std::vector<LabeledText> particulars;  ///< likewise, of the box in the head
};

/// Told the share of the work done, 0 to 1; returns false to stop it.
using ReportProgress = std::function<bool(double)>;

}  // namespace thalvorn
