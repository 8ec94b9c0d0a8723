#pragma once

// The reports' JSON, written piece by piece: for thousands of songs it takes longer to make values of JSON
// first than all the rest of a report.

#include <string>

#include "zemhost/output/JsonText.h"

namespace zemhost {

// A value on one line. Every character stands as it is, unless JSON has it escaped; bytes that are not UTF-8
// become U+FFFD.
std::string jsonLine(const Json &value);

// The same of a text, in quotes.
std::string quotedLine(const std::string &text);

// The line of an object of texts and numbers, with a line for each of its members; they stand behind `indent`
// blanks, and the last brace behind two fewer.
std::string indentedObject(const std::string &line, size_t indent);

}  // namespace zemhost
