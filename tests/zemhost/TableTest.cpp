#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Table.h"

namespace zemhost {
namespace {

using Align = Column::Align;

std::string written(const Table &table, std::optional<size_t> width = std::nullopt) {
  std::ostringstream out;
  table.write(out, width);
  return out.str();
}

std::vector<std::string> lines(const std::string &text) {
  std::vector<std::string> result;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) result.push_back(line);
  return result;
}

Table songs() {
  Table table({{"#", Align::Right, 0, 0},
               {"Title", Align::Left, 8, 0},
               {"Artist", Align::Left, 6, 1},
               {"Time", Align::Right, 0, 2}});
  table.addRow({"1", "A Long Title of a Song", "Somebody Known", "3:05"});
  table.addRow({"10", "Short", "", "12:00"});
  return table;
}

TEST(Table, ColumnsAreAlignedWithNoBlanksAtTheEndOfALine) {
  EXPECT_EQ(written(songs()),
            " #  Title                   Artist           Time\n"
            " 1  A Long Title of a Song  Somebody Known   3:05\n"
            "10  Short                                   12:00\n");
  Table table({{"A"}, {"B"}});
  table.addRow({"x", ""});
  table.addRow({"y", "z  "});
  EXPECT_EQ(written(table), "A  B\nx\ny  z\n");
}

TEST(Table, WideAndCombiningTextKeepsTheColumnsInLine) {
  Table table({{"Title"}, {"N", Align::Right}});
  table.addRow({"\u97F3\u6A02", "1"});
  table.addRow({"Cafe\u0301", "2"});
  table.addRow({"plain", "3"});
  EXPECT_EQ(written(table), "Title  N\n\u97F3\u6A02   1\nCafe\u0301   2\nplain  3\n");
}

TEST(Table, TextIsWrittenWholeWhereThereIsNoWidth) {
  Table table({{"Title", Align::Left, 4, 0}, {"Empty", Align::Left, 0, 1}, {"End"}});
  const std::string text(500, 'x');
  table.addRow({text, "", "e"});
  EXPECT_EQ(lines(written(table))[1], text + std::string(9, ' ') + "e");
}

TEST(Table, CellOfGreatWidthPushesItsOwnRowAsideAlone) {
  Table table({{"A"}, {"B"}});
  table.addRow({std::string(101, 'x'), "1"});
  table.addRow({"a", "2"});
  EXPECT_EQ(lines(written(table))[1], std::string(101, 'x') + "  1");
  EXPECT_EQ(lines(written(table))[2], "a" + std::string(101, ' ') + "2");
}

TEST(Table, WhatIsWrittenGrowsWithTheCellsWhateverTheWidestOfThem) {
  const auto bytesWritten = [](size_t rows) {
    Table table({{"A"}, {"B"}, {"C", Align::Right}, {"D"}});
    for (size_t row = 0; row < rows; ++row) table.addRow({"a", "b", "c", "d"});
    table.addRow(
        {std::string(100 * rows, 'x'), std::string(100 * rows, 'y'), std::string(100 * rows, 'z'), "d"});
    return written(table).size();
  };
  // As long again for each row, and no longer for rows that others are longer than.
  EXPECT_LT(bytesWritten(2000), 2 * bytesWritten(1000) + 1000);
  EXPECT_LT(bytesWritten(1000), size_t{1000} * (300 + 3 * 102 + 10));
}

TEST(Table, LongestTextIsCutFirst) {
  EXPECT_EQ(written(songs(), 42),
            " #  Title            Artist           Time\n"
            " 1  A Long Title o\u2026  Somebody Known   3:05\n"
            "10  Short                            12:00\n");
}

TEST(Table, ColumnsLeaveInTheirOrderWhereRoomIsShort) {
  EXPECT_EQ(written(songs(), 20),
            " #  Title     Artist\n"
            " 1  A Long \u2026  Someb\u2026\n"
            "10  Short\n");
  EXPECT_EQ(lines(written(songs(), 15))[0], " #  Title");
}

TEST(Table, NarrowColumnTakesTheRoomThatWasTooSmallForAWiderOne) {
  EXPECT_EQ(written(songs(), 19),
            " #  Title      Time\n"
            " 1  A Long \u2026   3:05\n"
            "10  Short     12:00\n");
}

TEST(Table, NoLineTakesMoreThanTheWidth) {
  for (size_t width = 1; width < 60; ++width) {
    for (const std::string &line : lines(written(songs(), width))) {
      EXPECT_LE(displayWidth(line), width) << line;
    }
  }
}

TEST(Table, WidthOfTheWholeTextCutsNothing) { EXPECT_EQ(written(songs(), 50), written(songs())); }

TEST(Table, ColumnEmptyThroughoutIsLeftOutOnATerminal) {
  Table table({{"A"}, {"Empty"}, {"B"}});
  table.addRow({"a", "", "b"});
  EXPECT_EQ(written(table, 80), "A  B\na  b\n");
  EXPECT_EQ(written(table), "A  Empty  B\na         b\n");
}

TEST(Table, HeadingsStandWithoutRows) {
  const Table table({{"A"}, {"B"}});
  EXPECT_EQ(written(table, 80), "A  B\n");
}

TEST(Table, ControlCharactersInCellsAreMadeVisible) {
  Table table({{"A"}});
  table.addRow({"x\x1B[2J\ny"});
  EXPECT_EQ(written(table), "A\nx\u241B[2J\u240Ay\n");
}

TEST(Table, RowWithAnotherNumberOfCellsIsRefused) {
  Table table({{"A"}, {"B"}});
  EXPECT_THROW(table.addRow({"a"}), std::invalid_argument);
}

}  // namespace
}  // namespace zemhost
