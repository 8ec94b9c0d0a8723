// A table: the first byte is the width, the second the number of columns and how they are set; the parts of
// the rest are its cells. Whatever they hold, nothing in a line steers a terminal, no line is wider than was
// asked for, and a table without a width is no larger than its cells and a share for each row.

#include <algorithm>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "fuzz/Texts.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Table.h"

namespace {

using fuzz::Require;
using namespace zemhost;

std::vector<Column> Columns(size_t count, uint8_t options) {
  std::vector<Column> columns;
  for (size_t i = 0; i < count; ++i) {
    const bool right = ((options >> 3 & 1U) ^ (i & 1U)) != 0;
    columns.push_back({"Heading " + std::to_string(i), right ? Column::Align::Right : Column::Align::Left,
                       (options >> 4) * i % 9, static_cast<int>(i * 5 % 4)});
  }
  return columns;
}

std::vector<std::string> Lines(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string Written(const Table &table, std::optional<size_t> width) {
  std::ostringstream out;
  table.write(out, width);
  return out.str();
}

void IsSafeTable(const std::string &text) {
  const std::u32string points = fuzz::CodePoints(text);
  Require(std::none_of(points.begin(), points.end(), fuzz::Steers), "a terminal could be steered");
}

void TryText(const std::string &text, size_t width) {
  const std::string safe = safeText(text);
  IsSafeTable(safe);
  Require(safeText(safe) == safe, "safe text that is not");
  const std::string cut = cutToWidth(safe, width);
  Require(displayWidth(cut) <= width, "cut, and too wide");
  // Nothing fits in no width, combining marks neither.
  const bool fits = width == 0 ? safe.empty() : displayWidth(safe) <= width;
  Require((cut == safe) == fits, "cut without need, or not cut");
  (void)fuzz::CodePoints(composedText(text));
  (void)fuzz::CodePoints(foldedText(text));
}

}  // namespace

FUZZ_TARGET(table) {
  if (size < 2) return;
  const size_t width = data[0];
  const size_t count = 1 + data[1] % 8;
  const std::vector<std::string> parts = fuzz::PartsOf({reinterpret_cast<const char *>(data) + 2, size - 2});
  Table table(Columns(count, data[1]));
  size_t bytes = 0;
  size_t rows = 0;
  for (size_t at = 0; at < parts.size(); at += count, ++rows) {
    std::vector<std::string> cells(count);
    for (size_t i = 0; i < count && at + i < parts.size(); ++i) {
      cells[i] = parts[at + i];
      bytes += cells[i].size();
      TryText(cells[i], width);
    }
    table.addRow(cells);
  }
  const std::string whole = Written(table, std::nullopt);
  Require(whole.size() <= 3 * bytes + (rows + 1) * count * 200, "a table that is larger than its cells");
  const std::string fitted = Written(table, width);
  for (const std::string &text : {whole, fitted}) {
    const std::vector<std::string> lines = Lines(text);
    Require(lines.size() == rows + 1, "not a line for each row");
    for (const std::string &line : lines) {
      IsSafeTable(line);
      Require(!line.ends_with(' '), "a blank at the end of a line");
    }
  }
  for (const std::string &line : Lines(fitted)) Require(displayWidth(line) <= width, "a line too wide");
}
