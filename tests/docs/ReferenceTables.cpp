#include "tests/docs/ReferenceTables.h"

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
std::vector<std::string> CellsOf(const std::string &line) {
  std::vector<std::string> cells;
  for (size_t at = 1; at < line.size();) {
    const size_t end = std::min(line.find('|', at), line.size());
    cells.push_back(Bare(Trimmed(line.substr(at, end - at))));
    at = end + 1;
  }
  return cells;
}

}  // namespace

Tables ReadTables(const std::filesystem::path &document) {
  std::ifstream file(document);
  if (!file) throw std::runtime_error("cannot read " + document.string());
  Tables tables;
  std::vector<std::string> heading;  // of the table that is being read; empty between tables
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with('|')) {
      heading.clear();
      continue;
    }
    std::vector<std::string> cells = CellsOf(line);
    if (heading.empty()) {
      heading = cells;
      continue;
    }
    if (heading.front() != "Declaration" || line.starts_with("|-")) continue;
    if (cells.size() != heading.size()) throw std::runtime_error("a row of another length: " + line);
    std::vector<Row> &rows = heading.back() == "Nothing there" ? tables.methods : tables.properties;
    rows.push_back({cells.front(), {cells.begin() + 1, cells.end()}});
  }
  return tables;
}

}  // namespace docs_test
