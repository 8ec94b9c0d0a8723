#pragma once

// Aligned columns of text on a terminal or in a pipe.

#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace zemhost {

struct Column {
  enum class Align { Left, Right };

  std::string heading;
  Align align = Align::Left;
  // Where room is short, cells may be cut to this many terminal cells; 0: they are never cut.
  size_t leastWidth = 0;
  // Columns are given their place in the order of these numbers, as far as there is room; those of 0 always.
  int rank = 0;
};

class Table {
 public:
  // What is done to each cell's text once it is safe for a terminal.
  using Fit = std::function<std::string(const std::string &)>;

  explicit Table(std::vector<Column> columns, Fit fit = {});

  // Adds a row of one cell per column, made safe for a terminal, then fitted. Throws std::invalid_argument
  // for another number of cells.
  void addRow(std::vector<std::string> cells);

  // Writes headings and rows, one a line, no blanks at the end of a line. Without a width every cell of every
  // column is written whole; one of more than 100 terminal cells pushes the rest of its row aside and leaves
  // other rows as they are, so that what is written grows with the cells. With one no line takes more
  // terminal cells than that: columns that are empty throughout or lose their place are left out, and texts
  // are cut with an ellipsis.
  void write(std::ostream &out, std::optional<size_t> width, bool boldHeadings = false) const;
  // Writes it as fits what standard output goes to: within a terminal's width, and with bold headings where
  // the terminal shows styles.
  void show(std::ostream &out) const;

 private:
  struct Slot {  // a column that is shown
    size_t column;
    size_t width;
  };

  std::vector<Slot> wholeColumns() const;
  std::vector<Slot> columnsWithin(size_t width) const;
  std::string rowText(const std::vector<std::string> &cells, const std::vector<Slot> &slots,
                      std::optional<size_t> width) const;

  std::vector<Column> columns_;
  Fit fit_;
  std::vector<size_t> widths_;  // of the widest cell or heading of each column
  std::vector<bool> used_;      // whether any cell of the column holds text
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace zemhost
