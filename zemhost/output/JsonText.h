#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>

namespace zemhost {

// A value of JSON whose keys stay in the order in which they were put in.
using Json = nlohmann::ordered_json;

// The value as JSON in UTF-8, on one line, or with `indent` blanks for each level. DEL, the C1 controls, line
// separators, and marks and overrides of direction stand as "\u009b", as JSON has the other controls anyway,
// so that it may go to a terminal as it is; bytes that are not UTF-8 become U+FFFD.
std::string jsonText(const Json &value, int indent = -1);

// Adds the same on one line to a text. Quick for what rows are made of: null, numbers and plain texts.
void appendJson(std::string &text, const Json &value);

// The value on one line, each character as it is unless JSON has it escaped, for files that programs read;
// bytes that are not UTF-8 become U+FFFD.
std::string jsonLine(const Json &value);

// The same of a text, in quotes.
std::string quotedLine(const std::string &text);

// The line of an object of texts and numbers, with a line for each of its members; they stand behind `indent`
// blanks, and the last brace behind two fewer.
std::string indentedObject(const std::string &line, size_t indent);

}  // namespace zemhost
