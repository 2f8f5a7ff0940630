#include "reports/page_layout.h"

#include <algorithm>

namespace thalvorn {
namespace {

using paper::TextStyle;

constexpr double startOfBlock = 64;  ///< what must fit below a heading
constexpr double summaryWidth = 248;
constexpr double summaryStep = 15.75;  ///< from line to line
constexpr double signatureHeight = 44;
constexpr double signatureGap = 30;
constexpr std::size_t signaturesAbreast = 3;
constexpr double photoGap = 12;

double lineHeight(TextStyle style) { return paper::facts(style).lineHeight; }

void putParagraphLines(PageFlow& flow, std::string_view text, TextStyle style, double x, double width) {
  std::vector<TextLine> lines;
  flow.typesetter().wrap(text, style, width, lines);
  for (const auto& line : lines) {
    flow.ensure(lineHeight(style));
    flow.putLine(line, x, flow.y(), width, style, Alignment::left);
    flow.advance(lineHeight(style));
  }
}

/// How a summary divides the width, and how high it stands.
struct SummaryMeasure {
  double width;
  std::vector<TextLine> remarks;
  double remarksWidth;
  double height;

  SummaryMeasure(const PageFlow& flow, const Summary& summary) : width(std::min(summaryWidth, flow.width() * 0.55)) {
    remarksWidth = flow.width() - width - 24;
    flow.typesetter().wrap(summary.remarks, TextStyle::muted, remarksWidth, remarks);
    height = std::max(8 + summaryStep * static_cast<double>(summary.lines.size() + 1),
                      6 + static_cast<double>(remarks.size()) * lineHeight(TextStyle::muted));
  }
};

double heightOf(const Signatures& signatures) {
  return static_cast<double>((signatures.captions.size() + signaturesAbreast - 1) / signaturesAbreast) *
         signatureHeight;
}

/// The room that the sums and signatures from `block` on need, with the gap before them; 0 for any other block.
double heightOfEnd(const PageFlow& flow, const std::vector<Block>& blocks, std::size_t block) {
  double height = 0;
  for (; block < blocks.size(); ++block) {
    if (const auto* summary = std::get_if<Summary>(&blocks[block])) {
      height += paper::blockGap + SummaryMeasure(flow, *summary).height;
    } else if (const auto* signatures = std::get_if<Signatures>(&blocks[block])) {
      height += paper::blockGap + heightOf(*signatures);
    } else {
      break;
    }
  }
  return height;
}

class BlockSetter {
 public:
  BlockSetter(PageFlow& flow, const ReportProgress& progress) : flow_(flow), progress_(progress) {}

  /// The room to keep free below the next block.
  void keepBelow(double tail) { tail_ = tail; }

  bool operator()(const Heading& heading) {
    flow_.gap(4);
    flow_.ensure(lineHeight(TextStyle::heading) + startOfBlock);
    flow_.bookmark(heading.text, 0);
    flow_.putText(heading.aside, flow_.left(), flow_.y() + 1, flow_.width(), TextStyle::muted, Alignment::right);
    const double room = flow_.width() - flow_.typesetter().width(heading.aside, TextStyle::muted) - 12;
    putParagraphLines(flow_, heading.text, TextStyle::heading, flow_.left(), room);
    flow_.advance(4);
    return true;
  }

  bool operator()(const Paragraph& paragraph) {
    putParagraphLines(flow_, paragraph.text, paragraph.muted ? TextStyle::muted : TextStyle::body, flow_.left(),
                      flow_.width());
    flow_.advance(paper::blockGap / 2);
    return true;
  }

  bool operator()(const FieldGrid& grid) {
    const FieldRows rows(flow_.typesetter(), grid.fields, grid.columns, flow_.width());
    for (std::size_t row = 0; row < rows.count(); ++row) {
      flow_.ensure(rows.height(row));
      rows.put(flow_, row, flow_.left(), flow_.y());
      flow_.advance(rows.height(row));
    }
    flow_.advance(paper::blockGap);
    return true;
  }

  bool operator()(const Table& table) { return putTable(flow_, table, tail_, progress_); }

  bool operator()(const Card& card) {
    const double x = flow_.left() + paper::framePadding;
    const double width = flow_.width() - 2 * paper::framePadding;
    const FieldRows rows(flow_.typesetter(), card.fields, card.columns, width);
    std::vector<TextLine> title;
    const double aside = flow_.typesetter().width(card.aside, TextStyle::strong);
    flow_.typesetter().wrap(card.title, TextStyle::cardTitle, width - aside - 12, title);
    std::vector<TextLine> text;
    flow_.typesetter().wrap(card.text, TextStyle::body, width, text);
    const double textGap = text.empty() ? 0 : 3;
    const double height = static_cast<double>(title.size()) * lineHeight(TextStyle::cardTitle) + rows.height() +
                          textGap + static_cast<double>(text.size()) * lineHeight(TextStyle::body) +
                          2 * paper::framePadding;
    if (height <= flow_.fullPage()) flow_.ensure(height);
    flow_.ensure(startOfBlock);

    double top = flow_.y();
    flow_.advance(paper::framePadding);
    const auto close = [&] {
      flow_.page().frames.push_back({static_cast<float>(flow_.left()), static_cast<float>(top),
                                     static_cast<float>(flow_.width()),
                                     static_cast<float>(flow_.y() + paper::framePadding - top), 3});
    };
    const auto room = [&](double needed) {
      if (needed + paper::framePadding <= flow_.space()) return;
      close();
      flow_.newPage();
      top = flow_.y();
      flow_.advance(paper::framePadding);
    };
    flow_.putText(card.aside, x, flow_.y(), width, TextStyle::strong, Alignment::right);
    for (const auto& line : title) {
      flow_.putLine(line, x, flow_.y(), width, TextStyle::cardTitle, Alignment::left);
      flow_.advance(lineHeight(TextStyle::cardTitle));
    }
    for (std::size_t row = 0; row < rows.count(); ++row) {
      room(rows.height(row));
      rows.put(flow_, row, x, flow_.y());
      flow_.advance(rows.height(row));
    }
    flow_.advance(textGap);
    for (const auto& line : text) {
      room(lineHeight(TextStyle::body));
      flow_.putLine(line, x, flow_.y(), width, TextStyle::body, Alignment::left);
      flow_.advance(lineHeight(TextStyle::body));
    }
    close();
    flow_.advance(paper::framePadding + paper::blockGap * 0.6);
    return true;
  }

  bool operator()(const Summary& summary) {
    const SummaryMeasure measure(flow_, summary);
    const double blockWidth = measure.width;
    flow_.ensure(measure.height + tail_);

    const double x = flow_.left() + flow_.width() - blockWidth;
    double y = flow_.y();
    flow_.putRule(x, y, blockWidth, paper::LineStyle::rule);
    y += 7;
    flow_.putText(summary.title, x, y, blockWidth, TextStyle::strong);
    for (const auto& line : summary.lines) {
      y += summaryStep;
      flow_.putText(line.label, x, y, blockWidth, TextStyle::body);
      const double note = line.note.empty() ? 0 : flow_.typesetter().width(line.note, TextStyle::muted) + 4;
      flow_.putText(line.note, x, y, blockWidth, TextStyle::muted, Alignment::right);
      flow_.putText(line.value, x, y, blockWidth - note, TextStyle::strong, Alignment::right);
    }
    double remarkY = flow_.y() + 6;
    for (const auto& line : measure.remarks) {
      flow_.putLine(line, flow_.left(), remarkY, measure.remarksWidth, TextStyle::muted, Alignment::left);
      remarkY += lineHeight(TextStyle::muted);
    }
    flow_.advance(std::max(y + summaryStep, remarkY) - flow_.y() + paper::blockGap);
    return true;
  }

  bool operator()(const PhotoGrid& grid) {
    const auto columns = static_cast<std::size_t>(std::max(1, grid.columns));
    const double width = (flow_.width() - photoGap * static_cast<double>(columns - 1)) / static_cast<double>(columns);
    const double height = std::min(width * 0.75, flow_.fullPage() - 40);
    for (std::size_t from = 0; from < grid.photos.size(); from += columns) {
      const std::size_t to = std::min(from + columns, grid.photos.size());
      std::vector<std::vector<TextLine>> captions(to - from);
      std::size_t most = 0;
      for (std::size_t i = from; i < to; ++i) {
        flow_.typesetter().wrap(grid.photos[i].caption, TextStyle::caption, width, captions[i - from]);
        most = std::max(most, captions[i - from].size());
      }
      const double rowHeight = height + 4 + static_cast<double>(most) * lineHeight(TextStyle::caption);
      flow_.ensure(rowHeight);
      for (std::size_t i = from; i < to; ++i) {
        const double x = flow_.left() + static_cast<double>(i - from) * (width + photoGap);
        flow_.page().photos.push_back({&grid.photos[i], static_cast<float>(x), static_cast<float>(flow_.y()),
                                       static_cast<float>(width), static_cast<float>(height)});
        double y = flow_.y() + height + 3;
        for (const auto& line : captions[i - from]) {
          flow_.putLine(line, x, y, width, TextStyle::caption, Alignment::left);
          y += lineHeight(TextStyle::caption);
        }
      }
      flow_.advance(rowHeight + photoGap / 2);
    }
    flow_.advance(paper::blockGap / 2);
    return true;
  }

  bool operator()(const Signatures& signatures) {
    const std::size_t count = signatures.captions.size();
    flow_.ensure(heightOf(signatures));
    flow_.advance(std::max(0.0, flow_.space() - heightOf(signatures) - 6));
    for (std::size_t from = 0; from < count; from += signaturesAbreast) {
      const std::size_t to = std::min(from + signaturesAbreast, count);
      const auto abreast = static_cast<double>(to - from);
      const double width = (flow_.width() - signatureGap * (abreast - 1)) / abreast;
      const double y = flow_.y() + signatureHeight - 18;
      for (std::size_t i = from; i < to; ++i) {
        const double x = flow_.left() + static_cast<double>(i - from) * (width + signatureGap);
        flow_.putRule(x, y, width, paper::LineStyle::rule);
        flow_.putText(signatures.captions[i], x, y + 4, width, TextStyle::caption);
      }
      flow_.advance(signatureHeight);
    }
    return true;
  }

  bool operator()(const PageBreak&) {
    if (!flow_.atTop()) flow_.newPage();
    return true;
  }

 private:
  PageFlow& flow_;
  const ReportProgress& progress_;
  double tail_ = 0;
};

}  // namespace

std::optional<PagedLayout> layOut(const Document& document, const Typesetter& typesetter,
                                  const ReportProgress& progress) {
  PagedLayout layout;
  PageFlow flow(document, typesetter, layout);
  BlockSetter setter(flow, progress);
  for (std::size_t i = 0; i < document.blocks.size(); ++i) {
    setter.keepBelow(heightOfEnd(flow, document.blocks, i + 1));
    if (!std::visit(setter, document.blocks[i])) return std::nullopt;
  }
  flow.finish();
  return layout;
}

}  // namespace thalvorn
