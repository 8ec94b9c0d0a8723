// The tables of a document.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace docs_test {

using Cells = std::vector<std::string>;

struct Table {
  Cells heading;
  std::vector<Cells> rows;
};

// Reads the tables "| a | b |" of a document: cells without blanks at their ends, and without backquotes
// where these enclose the whole cell. Throws std::runtime_error for a file that cannot be read and for a row
// with another number of cells than its heading.
std::vector<Table> ReadTables(const std::filesystem::path &document);

// The rows, together, of those tables whose heading begins and ends with these. Throws std::runtime_error
// when there is no such row.
std::vector<Cells> RowsOf(const std::vector<Table> &tables, const std::string &first,
                          const std::string &last);

}  // namespace docs_test
