#include "reports/pdf_finish.h"

#include <fmt/format.h>
#include <qpdf/qpdf-c.h>

#include <QDateTime>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "reports/paper_style.h"
#include "reports/typesetter.h"

namespace thalvorn {
namespace {

/// A file in memory with the objects it is made of; the library's errors are kept until asked for.
class PdfObjects {
 public:
  PdfObjects() : file_(qpdf_init()) {
    qpdf_silence_errors(file_);
    qpdf_set_suppress_warnings(file_, QPDF_TRUE);
  }
  ~PdfObjects() { qpdf_cleanup(&file_); }
  PdfObjects(const PdfObjects&) = delete;
  PdfObjects& operator=(const PdfObjects&) = delete;

  /// The bytes must live as long as this.
  void read(const QByteArray& bytes) {
    qpdf_read_memory(file_, "report", bytes.constData(), static_cast<unsigned long long>(bytes.size()), nullptr);
  }
  std::optional<QString> error() {
    if (!qpdf_has_error(file_)) return std::nullopt;
    return QString::fromUtf8(qpdf_get_error_full_text(file_, qpdf_get_error(file_)));
  }

  qpdf_data file() const { return file_; }
  qpdf_oh root() { return qpdf_get_root(file_); }
  qpdf_oh trailer() { return qpdf_get_trailer(file_); }
  /// A dictionary that others can refer to.
  qpdf_oh node() { return qpdf_make_indirect_object(file_, qpdf_oh_new_dictionary(file_)); }
  qpdf_oh text(const QString& value) { return qpdf_oh_new_unicode_string(file_, value.toUtf8().constData()); }
  qpdf_oh name(const char* value) { return qpdf_oh_new_name(file_, value); }
  qpdf_oh integer(long long value) { return qpdf_oh_new_integer(file_, value); }
  qpdf_oh get(qpdf_oh dictionary, const char* key) { return qpdf_oh_get_key(file_, dictionary, key); }
  void set(qpdf_oh dictionary, const char* key, qpdf_oh value) { qpdf_oh_replace_key(file_, dictionary, key, value); }
  /// What a stream holds, unpacked; empty for anything else.
  std::string streamBytes(qpdf_oh stream) {
    unsigned char* bytes = nullptr;
    std::size_t length = 0;
    if (qpdf_oh_get_stream_data(file_, stream, qpdf_dl_all, nullptr, &bytes, &length) != QPDF_SUCCESS) return {};
    std::string result(reinterpret_cast<const char*>(bytes), length);
    std::free(bytes);
    return result;
  }
  void setStream(qpdf_oh stream, const std::string& bytes) {
    qpdf_oh_replace_stream_data(file_, stream, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                                qpdf_oh_new_null(file_), qpdf_oh_new_null(file_));
  }

 private:
  qpdf_data file_;
};

void setFacts(PdfObjects& pdf, const PdfFacts& facts) {
  const auto date = QDateTime::fromSecsSinceEpoch(facts.created.time_since_epoch().count(), Qt::UTC)
                        .toString(QStringLiteral("'D:'yyyyMMddHHmmss'Z'"));
  const auto info = pdf.node();
  pdf.set(info, "/Title", pdf.text(facts.title));
  pdf.set(info, "/Creator", pdf.text(facts.creator));
  pdf.set(info, "/Producer", pdf.text(facts.creator));
  pdf.set(info, "/CreationDate", pdf.text(date));
  pdf.set(info, "/ModDate", pdf.text(date));
  pdf.set(pdf.trailer(), "/Info", info);
  qpdf_oh_remove_key(pdf.file(), pdf.root(), "/Metadata");
  pdf.set(pdf.root(), "/Lang", pdf.text(facts.language));
  const auto preferences = qpdf_oh_new_dictionary(pdf.file());
  pdf.set(preferences, "/DisplayDocTitle", qpdf_oh_new_bool(pdf.file(), QPDF_TRUE));
  pdf.set(pdf.root(), "/ViewerPreferences", preferences);
}

/// The bookmarks: groups below the section they stand in.
class Outline {
 public:
  Outline(PdfObjects& pdf, const PdfFacts& facts) : pdf_(pdf), facts_(facts) {}

  void add() {
    if (facts_.bookmarks.empty()) return;
    const auto root = pdf_.node();
    pdf_.set(root, "/Type", pdf_.name("/Outlines"));
    addChildren(root, 0);
    pdf_.set(pdf_.root(), "/Outlines", root);
    pdf_.set(pdf_.root(), "/PageMode", pdf_.name("/UseOutlines"));
  }

 private:
  void addChildren(qpdf_oh parent, int level) {
    qpdf_oh last = 0;
    int count = 0;
    while (at_ < facts_.bookmarks.size() && facts_.bookmarks[at_].level >= level) {
      if (count > 0 && facts_.bookmarks[at_].level > level) {
        addChildren(last, facts_.bookmarks[at_].level);
        continue;
      }
      const auto item = entry(facts_.bookmarks[at_++]);
      pdf_.set(item, "/Parent", parent);
      if (count == 0) {
        pdf_.set(parent, "/First", item);
      } else {
        pdf_.set(item, "/Prev", last);
        pdf_.set(last, "/Next", item);
      }
      last = item;
      ++count;
    }
    pdf_.set(parent, "/Last", last);
    pdf_.set(parent, "/Count", pdf_.integer(count));
  }

  qpdf_oh entry(const Bookmark& bookmark) {
    const auto item = pdf_.node();
    pdf_.set(item, "/Title", pdf_.text(QString::fromStdString(bookmark.title)));
    const auto place = qpdf_oh_new_array(pdf_.file());
    constexpr double above = 6;  // the reader sees a little of what is above
    const auto top = static_cast<long long>(facts_.pageHeight - bookmark.y + above);
    for (const auto part : {qpdf_get_page_n(pdf_.file(), bookmark.page), pdf_.name("/XYZ"), pdf_.integer(0),
                            pdf_.integer(top), pdf_.integer(0)}) {
      qpdf_oh_append_item(pdf_.file(), place, part);
    }
    pdf_.set(item, "/Dest", place);
    return item;
  }

  PdfObjects& pdf_;
  const PdfFacts& facts_;
  std::size_t at_ = 0;
};

/// The blank typeface as the file names it.
std::string blankName() { return paper::blankFamily().remove(QLatin1Char(' ')).toStdString(); }

std::string hex(const QString& value) {
  std::string digits;
  for (const QChar unit : value) digits += fmt::format("{:04x}", unsigned(unit.unicode()));
  return digits;
}

/// What the glyphs of a typeface read, by their numbers.
using Readings = std::vector<std::pair<unsigned, QString>>;

/// The readings as a file has them.
std::string mapOf(const Readings& readings) {
  std::string map =
      "/CIDInit /ProcSet findresource begin 12 dict begin begincmap\n"
      "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
      "/CMapName /Adobe-Identity-UCS def /CMapType 2 def\n"
      "1 begincodespacerange <0000> <FFFF> endcodespacerange\n";
  constexpr std::size_t mostInBlock = 100;
  for (std::size_t from = 0; from < readings.size(); from += mostInBlock) {
    const auto to = std::min(from + mostInBlock, readings.size());
    map += fmt::format("{} beginbfchar\n", to - from);
    for (std::size_t i = from; i < to; ++i)
      map += fmt::format("<{:04x}> <{}>\n", readings[i].first, hex(readings[i].second));
    map += "endbfchar\n";
  }
  return map + "endcmap CMapName currentdict /CMap defineresource pop end end\n";
}

/// What is read for the blank glyphs below the pictures of emoji. The toolkit numbers a font's glyphs in the order in
/// which they are first drawn, from 1.
Readings readingsOf(const std::vector<QString>& blanks) {
  Readings readings;
  for (const auto& blank : blanks) readings.emplace_back(readings.size() + 1, blank);
  return readings;
}

/// Puts in place of the blank glyphs around words of stacked letters what tells a reader the words.
class StackedWords {
 public:
  StackedWords(PdfObjects& pdf, const PdfFacts& facts)
      : pdf_(pdf), facts_(facts), begin_(glyph(Typesetter::wordBegin())), end_(glyph(Typesetter::wordEnd())) {}

  void tell() {
    for (std::size_t page = 0; page < facts_.words.size(); ++page) {
      if (facts_.words[page].empty()) continue;
      const auto node = qpdf_get_page_n(pdf_.file(), page);
      const auto contents = pdf_.get(node, "/Contents");
      const auto font = blankFont(pdf_.get(pdf_.get(node, "/Resources"), "/Font"));
      if (const auto bytes = told(pdf_.streamBytes(contents), font, facts_.words[page])) {
        pdf_.setStream(contents, *bytes);
      }
    }
  }

 private:
  /// How the toolkit draws a mark and nothing else.
  std::string glyph(const QString& mark) const {
    const auto found = std::ranges::find(facts_.blanks, mark);
    return fmt::format("<{:04X}> Tj\nET\n", found - facts_.blanks.begin() + 1);
  }

  /// The name of the blank typeface on a page.
  std::string blankFont(qpdf_oh fonts) {
    std::string name;
    qpdf_oh_begin_dict_key_iter(pdf_.file(), fonts);
    while (name.empty() && qpdf_oh_dict_more_keys(pdf_.file())) {
      const char* key = qpdf_oh_dict_next_key(pdf_.file());
      const std::string_view family = qpdf_oh_get_name(pdf_.file(), pdf_.get(pdf_.get(fonts, key), "/BaseFont"));
      if (family.ends_with(blankName())) name = key;
    }
    return name;
  }

  /// The page with the words told; nothing when its marks are not those of the words.
  std::optional<std::string> told(std::string_view drawn, const std::string& font,
                                  const std::vector<QString>& words) const {
    constexpr std::string_view open = "\nq\n";
    constexpr std::string_view close = "Q\n";
    const std::string text = "BT\n" + font + " ";
    std::string result;
    std::size_t word = 0;
    std::size_t done = 0;
    for (auto at = drawn.find(text); at != drawn.npos; at = drawn.find(text, at)) {
      const auto end = drawn.find("ET\n", at) + 3;
      const auto block = drawn.substr(at, end - at);
      const bool begins = block.ends_with(begin_);
      at = end;
      if (!begins && !block.ends_with(end_)) continue;
      const auto from = drawn.rfind(open, end);
      if (!drawn.substr(end).starts_with(close) || from == drawn.npos || from + 1 < done) return std::nullopt;
      result += drawn.substr(done, from + 1 - done);
      if (begins ? word == words.size() : !result.ends_with(close)) return std::nullopt;
      if (begins) {
        result += fmt::format("/Span <</ActualText <feff{}>>> BDC\n", hex(words[word++]));
      } else {
        // Readers set the words in the type that holds where their span ends: before the letters' own is left.
        result.insert(result.size() - close.size(), "EMC\n");
      }
      done = end + close.size();
    }
    if (word != words.size()) return std::nullopt;
    return result.append(drawn.substr(done));
  }

  PdfObjects& pdf_;
  const PdfFacts& facts_;
  std::string begin_;
  std::string end_;
};

/// What a glyph reads that the toolkit names `code`. Where two characters share a glyph it names the first of them;
/// text has the second, the common quotes. Joined forms and ligatures it names as such, but who searches types their
/// letters.
QString lettersOf(char16_t code) {
  if (code == 0x02BC) return QStringLiteral("\u2019");
  if (code == 0x02EE) return QStringLiteral("\u201D");
  QString named(QChar{code});
  if (code < 0xFB00 || (code >= 0xFE00 && code < 0xFE70) || code >= 0xFEFF) return named;
  const auto letters = named.normalized(QString::NormalizationForm_KC);
  return letters.size() == 1 || code < 0xFB07 ? letters : named;
}

/// The readings in a map of the toolkit, which has ranges: first and last glyph, then what the first reads and the
/// others count on from, or in brackets what each of them reads.
Readings readingsIn(std::string_view map) {
  Readings readings;
  constexpr std::string_view begin = "beginbfrange";
  for (auto block = map.find(begin); block != map.npos; block = map.find(begin, block + 1)) {
    std::vector<unsigned> numbers;
    bool listed = false;
    for (auto at = block; at < map.size() && !map.substr(at).starts_with("endbfrange"); ++at) {
      if (map[at] == '[') listed = true;
      if (map[at] == '<') {
        unsigned number = 0;
        std::from_chars(map.data() + at + 1, map.data() + map.size(), number, 16);
        numbers.push_back(number);
      }
      const bool complete = listed ? map[at] == ']' : numbers.size() == 3 && map[at] == '\n';
      if (!complete || numbers.size() < 3) continue;
      for (unsigned glyph = numbers[0]; glyph <= std::min(numbers[1], 0xFFFFU); ++glyph) {
        const unsigned i = glyph - numbers[0];
        const unsigned code = listed ? (i + 2 < numbers.size() ? numbers[i + 2] : 0) : numbers[2] + i;
        if (code > 0) readings.emplace_back(glyph, lettersOf(static_cast<char16_t>(code)));
      }
      numbers.clear();
      listed = false;
    }
  }
  return readings;
}

/// Names the subsets of fonts in the order of their use, where the toolkit's order is one of chance, and gives the
/// emoji their texts.
void nameFonts(PdfObjects& pdf, const std::vector<QString>& blanks) {
  const auto file = pdf.file();
  const std::string blank = blankName();
  const int size = qpdf_oh_get_int_value_as_int(file, pdf.get(pdf.trailer(), "/Size"));
  int fonts = 0;
  for (int id = 1; id < size; ++id) {
    const auto font = qpdf_get_object_by_id(file, id, 0);
    if (!qpdf_oh_is_dictionary_of_type(file, font, "/Font", "/Type0")) continue;
    const std::string name = std::string(qpdf_oh_get_name(file, pdf.get(font, "/BaseFont"))).substr(1);
    const std::string tagged = fmt::format("/AAAA{}{}+{}", char('A' + fonts / 26 % 26), char('A' + fonts % 26), name);
    ++fonts;
    const auto descendant = qpdf_oh_get_array_item(file, pdf.get(font, "/DescendantFonts"), 0);
    pdf.set(font, "/BaseFont", pdf.name(tagged.c_str()));
    pdf.set(descendant, "/BaseFont", pdf.name(tagged.c_str()));
    pdf.set(pdf.get(descendant, "/FontDescriptor"), "/FontName", pdf.name(tagged.c_str()));
    const auto stream = pdf.get(font, "/ToUnicode");
    const bool isBlank = name.find(blank) != std::string::npos;
    pdf.setStream(stream, mapOf(isBlank ? readingsOf(blanks) : readingsIn(pdf.streamBytes(stream))));
  }
}

/// The file as the library writes it; the error is its own.
std::expected<QByteArray, QString> written(PdfObjects& pdf, qpdf_object_stream_e packing) {
  const auto file = pdf.file();
  qpdf_init_write_memory(file);
  qpdf_set_object_stream_mode(file, packing);
  qpdf_set_deterministic_ID(file, QPDF_TRUE);
  qpdf_write(file);
  const auto* bytes = qpdf_get_buffer(file);
  if (const auto error = pdf.error()) return std::unexpected(*error);
  if (!bytes) return std::unexpected(QStringLiteral("no memory"));
  return QByteArray(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(qpdf_get_buffer_length(file)));
}

}  // namespace

std::expected<QByteArray, QString> finishPdf(const QByteArray& drawn, const PdfFacts& facts) {
  const auto failed = [](const QString& error) {
    return std::unexpected(QStringLiteral("its file cannot be completed (%1).").arg(error));
  };
  QByteArray ordered;
  {
    PdfObjects pdf;
    pdf.read(drawn);
    if (const auto error = pdf.error()) return failed(*error);
    setFacts(pdf, facts);
    Outline(pdf, facts).add();
    StackedWords(pdf, facts).tell();
    nameFonts(pdf, facts.blanks);
    if (const auto error = pdf.error()) return failed(*error);
    // Without packing, objects are numbered as they are reached from the root, whatever numbers the toolkit gave them.
    auto bytes = written(pdf, qpdf_o_disable);
    if (!bytes) return failed(bytes.error());
    ordered = std::move(*bytes);
  }
  PdfObjects pdf;
  pdf.read(ordered);
  if (const auto error = pdf.error()) return failed(*error);
  auto packed = written(pdf, qpdf_o_generate);
  if (!packed) return failed(packed.error());
  return packed;
}

}  // namespace thalvorn
