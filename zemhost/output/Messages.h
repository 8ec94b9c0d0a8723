#pragma once

#include <string>
#include <string_view>

namespace zemhost {

// Writes one line to standard error: the program's name and the message, made safe for a terminal.
void printError(std::string_view message);

// A name or text in double quotes, as messages show it.
std::string inQuotes(std::string_view text);

}  // namespace zemhost
