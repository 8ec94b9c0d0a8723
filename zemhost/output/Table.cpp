#include "zemhost/output/Table.h"

#include <algorithm>
#include <stdexcept>
#include <unistd.h>
#include <utility>

#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Terminal.h"

namespace zemhost {

namespace {

constexpr std::string_view kGap = "  ";
// Where no width is given, cells are filled up to this many at most: one of a million characters would make
// every row as long as itself.
constexpr size_t kWidestAligned = 100;

}  // namespace

Table::Table(std::vector<Column> columns, Fit fit)
    : columns_(std::move(columns)), fit_(std::move(fit)), used_(columns_.size()) {
  for (const Column &column : columns_) widths_.push_back(displayWidth(column.heading));
}

void Table::addRow(std::vector<std::string> cells) {
  if (cells.size() != columns_.size()) throw std::invalid_argument("a table row needs one cell per column");
  for (size_t i = 0; i < cells.size(); ++i) {
    cells[i] = safeText(cells[i]);
    if (fit_) cells[i] = fit_(cells[i]);
    widths_[i] = std::max(widths_[i], displayWidth(cells[i]));
    if (!cells[i].empty()) used_[i] = true;
  }
  rows_.push_back(std::move(cells));
}

void Table::write(std::ostream &out, std::optional<size_t> width, bool boldHeadings) const {
  const std::vector<Slot> slots = width ? columnsWithin(*width) : wholeColumns();
  std::vector<std::string> headings;
  for (const Column &column : columns_) headings.push_back(column.heading);
  const std::string heading = rowText(headings, slots, width);
  out << (boldHeadings ? bold(heading) : heading) << '\n';
  for (const auto &row : rows_) out << rowText(row, slots, width) << '\n';
}

void Table::show(std::ostream &out) const { write(out, terminalWidth(), showsStyles(STDOUT_FILENO)); }

std::vector<Table::Slot> Table::wholeColumns() const {
  std::vector<Slot> slots;
  for (size_t i = 0; i < columns_.size(); ++i) slots.push_back({i, std::min(widths_[i], kWidestAligned)});
  return slots;
}

std::vector<Table::Slot> Table::columnsWithin(size_t width) const {
  const auto least = [this](size_t column) {
    const size_t floor = columns_[column].leastWidth;
    return floor == 0 ? widths_[column] : std::min(widths_[column], floor);
  };
  const auto total = [](const std::vector<Slot> &slots) {
    size_t sum = slots.empty() ? 0 : (slots.size() - 1) * kGap.size();
    for (const Slot &slot : slots) sum += slot.width;
    return sum;
  };

  std::vector<size_t> order;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (used_[i] || rows_.empty()) order.push_back(i);
  }
  std::stable_sort(order.begin(), order.end(),
                   [this](size_t a, size_t b) { return columns_[a].rank < columns_[b].rank; });
  std::vector<Slot> slots;
  for (const size_t column : order) {
    slots.push_back({column, least(column)});
    if (columns_[column].rank != 0 && total(slots) > width) slots.pop_back();
  }
  std::sort(slots.begin(), slots.end(), [](const Slot &a, const Slot &b) { return a.column < b.column; });

  // Hand the room that is left to the narrowest of the columns that are still cut, cell by cell.
  for (size_t room = width - std::min(width, total(slots)); room > 0; --room) {
    Slot *narrowest = nullptr;
    for (Slot &slot : slots) {
      if (slot.width < widths_[slot.column] && (narrowest == nullptr || slot.width < narrowest->width)) {
        narrowest = &slot;
      }
    }
    if (narrowest == nullptr) break;
    ++narrowest->width;
  }
  return slots;
}

std::string Table::rowText(const std::vector<std::string> &cells, const std::vector<Slot> &slots,
                           std::optional<size_t> width) const {
  std::string line;
  size_t blanks = 0;  // not written until text follows them
  for (const Slot &slot : slots) {
    if (&slot != slots.data()) blanks += kGap.size();
    const std::string cell = width ? cutToWidth(cells[slot.column], slot.width) : cells[slot.column];
    const size_t padding = slot.width - std::min(slot.width, displayWidth(cell));
    const bool right = columns_[slot.column].align == Column::Align::Right;
    if (right) blanks += padding;
    if (!cell.empty()) {
      line.append(blanks, ' ').append(cell);
      blanks = 0;
    }
    if (!right) blanks += padding;
  }
  if (width) line = cutToWidth(line, *width);
  line.erase(line.find_last_not_of(' ') + 1);  // those of a text, which nobody sees
  return line;
}

}  // namespace zemhost
