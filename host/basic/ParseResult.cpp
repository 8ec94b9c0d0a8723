#include "host/basic/ParseResult.h"

#include <algorithm>

#include "host/text/TextEncoding.h"
#include "platform/carbon/UnicodeForms.h"

namespace zemhost {
namespace {

// C0 and C1 control characters and DEL, which would otherwise reach the terminal. Sets how many bytes it has.
bool isControl(std::string_view text, size_t at, unsigned &code, size_t &length) {
  code = static_cast<unsigned char>(text[at]);
  length = 1;
  if (code == 0xC2 && at + 1 < text.size()) {
    code = static_cast<unsigned char>(text[at + 1]);
    length = 2;
    return code < 0xA0;
  }
  return code < 0x20 || code == 0x7F;
}

}  // namespace

std::string quoteText(std::string_view text) {
  const std::string valid = convertText(text, kUtf8, kUtf8).bytes;
  std::string out;
  bool inside = false;
  const auto toggle = [&](bool wanted) {
    if (inside == wanted) return;
    if (wanted && !out.empty()) out += " + ";
    out += '"';
    inside = wanted;
  };
  for (size_t i = 0; i < valid.size();) {
    unsigned code = 0;
    size_t length = 0;
    if (isControl(valid, i, code, length)) {
      toggle(false);
      out += (out.empty() ? "Chr(" : " + Chr(") + std::to_string(code) + ')';
      i += length;
      continue;
    }
    toggle(true);
    if (valid[i] == '"') out += '"';
    out += valid[i++];
  }
  if (out.empty()) return "\"\"";
  toggle(false);
  return out;
}

std::string explain(std::string_view what, std::string_view text, const ParseError &error) {
  const std::string_view before = text.substr(0, error.position);
  const auto column =
      1 + std::count_if(before.begin(), before.end(), [](char c) { return !unicode::isContinuation(c); });
  return "cannot read the " + std::string(what) + ' ' + quoteText(text) + ": " + error.message +
         " at character " + std::to_string(column);
}

}  // namespace zemhost
