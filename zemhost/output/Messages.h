#pragma once

#include <string_view>

namespace zemhost {

// Writes one line to standard error: the program's name and the message, made safe for a terminal, and broken
// between words at the width of one.
void printError(std::string_view message);

}  // namespace zemhost
