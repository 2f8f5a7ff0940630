#include "base/csv.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace thalvorn {
namespace {

using Rows = std::vector<std::vector<std::string>>;

Rows rowsOf(std::string_view text, std::optional<CsvSeparator> chosen = std::nullopt) {
  Rows rows;
  readCsv(openCsv(text, chosen), [&](const CsvRow& row) { rows.emplace_back(row.cells.begin(), row.cells.end()); });
  return rows;
}

TEST(CsvReader, ReadsEveryLineEndAndQuoting) {
  const Rows expected = {{"title", "notes"}, {"Oil, 15W-40", "two\nlines \"here\""}, {"", "b"}, {"last", ""}};
  EXPECT_EQ(rowsOf("title,notes\n\"Oil, 15W-40\",\"two\nlines \"\"here\"\"\"\n,b\n\nlast,"), expected);
  EXPECT_EQ(rowsOf("\xEF\xBB\xBFtitle,notes\r\n\"Oil, 15W-40\",\"two\nlines \"\"here\"\"\"\r\n,b\r\n\r\nlast,\r\n"),
            expected);
  EXPECT_EQ(rowsOf("title,notes\r\"Oil, 15W-40\",\"two\nlines \"\"here\"\"\"\r,b\r\rlast,"), expected);
  EXPECT_EQ(rowsOf(""), Rows{});
  EXPECT_EQ(rowsOf("\"\",\"\"\"\""), (Rows{{"", "\""}}));
  EXPECT_EQ(rowsOf("3\" hose,\"3\" hose\",x"), (Rows{{"3\" hose", "3\" hose", "x"}}));
}

TEST(CsvReader, FindsTheSeparator) {
  EXPECT_EQ(rowsOf("a;b;\"x,y,z,w\"\n1,5;2;3").back(), (std::vector<std::string>{"1,5", "2", "3"}));
  EXPECT_EQ(rowsOf("a\tb\n1;2\t3").back(), (std::vector<std::string>{"1;2", "3"}));
  EXPECT_EQ(rowsOf("only one column\nvalue").back(), (std::vector<std::string>{"value"}));
  EXPECT_EQ(rowsOf("SEP=;\r\na;b,c\r\n1;2").back(), (std::vector<std::string>{"1", "2"}));
  EXPECT_EQ(rowsOf("a;b,c", CsvSeparator::comma).front(), (std::vector<std::string>{"a;b", "c"}));
}

TEST(CsvReader, AQuoteThatIsNeverClosedLosesNoRow) {
  EXPECT_EQ(rowsOf("a,b\n\"open,1\nnext,2\nlast,3"), (Rows{{"a", "b"}, {"\"open", "1"}, {"next", "2"}, {"last", "3"}}));
  EXPECT_EQ(rowsOf("a,b\n\"open,1\nnext,\"x, y\"\nlast,3"),
            (Rows{{"a", "b"}, {"\"open", "1"}, {"next", "x, y"}, {"last", "3"}}));
}

TEST(CsvReader, StaysLinearOnHostileQuotes) {
  for (const std::string_view unit : {"\"a,", "\"a\"\",", "\"\"a\n", "\"a\"\"\n", "\"\n"}) {
    std::string text;
    while (text.size() < 2'000'000) text += unit;
    std::size_t bytes = 0;
    readCsv(openCsv(text), [&](const CsvRow& row) {
      for (const auto cell : row.cells) bytes += cell.size();
    });
    EXPECT_GT(bytes, text.size() / 8) << unit;
  }
}

TEST(CsvReader, TellsThePhysicalLineAndStopsWhenAsked) {
  std::vector<std::size_t> lines;
  readCsv(openCsv("sep=,\r\na,\"x\r\ny\"\r\n\r\nb,c\r\nd,e"), [&](const CsvRow& row) {
    lines.push_back(row.line);
    return lines.size() < 2;
  });
  EXPECT_EQ(lines, (std::vector<std::size_t>{2, 5}));
}

TEST(CsvHeader, FindsColumnsInAnyOrderAndCase) {
  std::vector<std::string> cells;
  CsvHeader header;
  readCsv(openCsv("Category, TITLE ,x\nEngine,  Oil change \n"), [&](const CsvRow& row) {
    if (row.line == 1) {
      header = CsvHeader(row.cells);
    } else {
      for (const auto name : {"title", "category", "x", "absent"}) cells.emplace_back(row.cell(header.column(name)));
    }
  });
  EXPECT_EQ(cells, (std::vector<std::string>{"Oil change", "Engine", "", ""}));
}

TEST(CsvBytes, ReadsWhatSpreadsheetsSave) {
  EXPECT_EQ(csvTextFromBytes("Gr\xFC\xDF"
                             "e \x80"),
            "Grüße €");
  EXPECT_EQ(csvTextFromBytes("Grüße ⚓"), "Grüße ⚓");
  EXPECT_EQ(csvTextFromBytes(std::string("\xFF\xFE"
                                         "a\0\xFC\0\x3D\xD8\x00\xDE",
                                         10)),
            "aü😀");
  EXPECT_EQ(csvTextFromBytes(std::string("\xFE\xFF\0a\xD8\x3D", 6)), "a\xEF\xBF\xBD");
}

TEST(CsvWriter, WritesWhatOurReaderReadsBack) {
  const std::vector<std::string> texts = {"plain",    "a,b",        "say \"hi\"", "two\r\nlines", "=1+1",
                                          "+39 010",  "-check",     "@home",      "\tx",          "'=already",
                                          "''-twice", "'tis",       "",           "00123",        "'1.10",
                                          " padded ", "ünïcøde ⚓", "\"",         "a;b\tc"};
  for (const auto separator : {CsvSeparator::comma, CsvSeparator::semicolon, CsvSeparator::tab}) {
    CsvWriter writer({.separator = separator});
    for (const auto& text : texts) writer.text(text);
    writer.endRow();
    const std::string file = writer.take();
    EXPECT_TRUE(file.starts_with("\xEF\xBB\xBF") && file.ends_with("\r\n"));
    std::vector<std::string> read;
    readCsv(openCsv(file, separator), [&](const CsvRow& row) {
      for (const auto cell : row.cells) {
        EXPECT_FALSE(!cell.empty() && std::string_view("=+-@\t\r").contains(cell.front())) << cell;
        read.emplace_back(withoutFormulaGuard(cell));
      }
    });
    EXPECT_EQ(read, texts);
  }
}

TEST(CsvWriter, GuardsTextThatASpreadsheetWouldRewrite) {
  const auto written = [](std::string_view text) {
    const std::string file = CsvWriter().text(text).take();
    return file.substr(3);
  };
  for (const auto* text : {"00123", "007.5", "1.10", "12E5", "1.5e-3", "1234567890123456", "3/4", "8-12", "1.2.2026"})
    EXPECT_EQ(written(text), std::string("'") + text);
  EXPECT_EQ(written("1,234"), "\"'1,234\"");
  for (const auto* text : {"20418", "0", "0.5", "1.25", "2026-11-21", "2026-11-21 08:00", "9074729", "12EF",
                           "192.168.0.1", "3/4 full", "8–12", "1e", "5%"})
    EXPECT_EQ(written(text), text);
}

TEST(CsvWriter, NumbersStayNumbers) {
  CsvWriter writer;
  writer.number(-12.5).number(1234567.0).number(0.1).number(9602.1, 2).integer(-7).number(NAN).number(std::nullopt);
  EXPECT_EQ(writer.endRow().take(), "\xEF\xBB\xBF-12.5,1234567,0.1,9602.10,-7,,\r\n");
  CsvWriter european({.separator = CsvSeparator::semicolon, .decimalPoint = ','});
  EXPECT_EQ(european.number(-12.5).text("a,b").endRow().take(), "\xEF\xBB\xBF-12,5;a,b\r\n");
}

}  // namespace
}  // namespace thalvorn
