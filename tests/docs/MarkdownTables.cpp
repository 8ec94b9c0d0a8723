#include "tests/docs/MarkdownTables.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace docs_test {
namespace {

std::string Trimmed(const std::string &text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string Bare(const std::string &cell) {
  const bool quoted = cell.size() >= 2 && cell.front() == '`' && cell.find('`', 1) == cell.size() - 1;
  return quoted ? cell.substr(1, cell.size() - 2) : cell;
}

// The cells of "| a | b |".
Cells CellsOf(const std::string &line) {
  Cells cells;
  for (size_t at = 1; at < line.size();) {
    const size_t end = std::min(line.find('|', at), line.size());
    cells.push_back(Bare(Trimmed(line.substr(at, end - at))));
    at = end + 1;
  }
  return cells;
}

}  // namespace

std::vector<Table> ReadTables(const std::filesystem::path &document) {
  std::ifstream file(document);
  if (!file) throw std::runtime_error("cannot read " + document.string());
  std::vector<Table> tables;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with('|')) {
      inside = false;
    } else if (!inside) {
      tables.push_back({CellsOf(line), {}});
      inside = true;
    } else if (!line.starts_with("|-")) {
      tables.back().rows.push_back(CellsOf(line));
      if (tables.back().rows.back().size() != tables.back().heading.size())
        throw std::runtime_error(document.string() + ": a row of another length: " + line);
    }
  }
  return tables;
}

std::vector<Cells> RowsOf(const std::vector<Table> &tables, const std::string &first,
                          const std::string &last) {
  std::vector<Cells> rows;
  for (const Table &table : tables) {
    if (table.heading.front() != first || table.heading.back() != last) continue;
    rows.insert(rows.end(), table.rows.begin(), table.rows.end());
  }
  if (rows.empty()) throw std::runtime_error("no table from " + first + " to " + last);
  return rows;
}

}  // namespace docs_test
