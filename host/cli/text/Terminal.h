#pragma once

#include <cstddef>
#include <optional>

namespace zemhost {

// The width in cells of the terminal that standard output goes to: what the terminal says, else the variable
// COLUMNS, else 80. Nothing when standard output is no terminal.
std::optional<size_t> terminalWidth();

}  // namespace zemhost
