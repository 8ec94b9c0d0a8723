#pragma once

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

}  // namespace zemhost
