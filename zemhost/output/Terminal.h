#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

namespace zemhost {

// The width in cells of the terminal that the descriptor, usually standard output, goes to: what the terminal
// says, else the variable COLUMNS, else 80. Nothing when it goes to no terminal.
std::optional<size_t> terminalWidth(int descriptor = STDOUT_FILENO);

// Whether the characters of the locale that the environment asks for are those of Unicode, in UTF-8.
bool isLocaleUtf8();

// Whether what goes to this descriptor may be bold or in colour: it is a terminal, the variable TERM names
// one that is not "dumb", and the variable NO_COLOR is not set, whatever its value.
bool showsStyles(int descriptor);

// The text between the control sequences that switch a style on and off. Its width on a terminal stays the
// same.
std::string bold(std::string_view text);
std::string boldRed(std::string_view text);

}  // namespace zemhost
