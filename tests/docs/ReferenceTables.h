// The tables of docs/class-reference.md.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace docs_test {

// A row whose first cell is a declaration in backquotes: its cells, without blanks at their ends and without
// backquotes around the whole cell.
struct Row {
  std::string declaration;
  std::vector<std::string> cells;  // those after the declaration
};

struct Tables {
  std::vector<Row> properties;  // cells: access, before Load, meaning
  std::vector<Row> methods;     // cells: meaning, before Load, nothing there
};

// Reads the tables headed "Declaration". Throws std::runtime_error for a file that cannot be read and for a
// row with another number of cells than its table's heading.
Tables ReadTables(const std::filesystem::path &document);

}  // namespace docs_test
