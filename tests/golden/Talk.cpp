#include "tests/golden/Talk.h"

#include <iomanip>
#include <sstream>

#include "tests/property/Volumes.h"

namespace golden {

using property::Step;
using support::Answer;

Talk::Talk(const Sample &sample)
    : item_(host_.MakeItem(property::PutOnVolume({.pieces = {sample.bytes}}, 0))), object_(host_.NewRaw()) {
  Call("Constructor");
  const std::string load = "Load(f As FolderItem) As Boolean";
  steps_.push_back({.kind = Step::Kind::Call, .name = load, .file = 0});
  CallAny(host_, object_, load, {.item = item_});
}

Talk::~Talk() { host_.Release(item_); }

Answer Talk::Call(const std::string &declaration, const Numbers &numbers) {
  steps_.push_back({.kind = Step::Kind::Call, .name = declaration, .numbers = numbers});
  return CallAny(host_, object_, declaration, {.numbers = numbers});
}

void Talk::SetText(const std::string &declaration, int32_t index, const std::string &utf8) {
  steps_.push_back({.kind = Step::Kind::Call,
                    .name = declaration,
                    .numbers = {index},
                    .text = model::HostText{utf8, support::kUtf8}});
  const REALstring text = host_.MakeString(utf8);
  CallAny(host_, object_, declaration, {.numbers = {index}, .text = text});
  host_.Release(text);
}

Answer Talk::AbsolutePath(const std::string &path) {
  const std::string declaration = "GetAbsolutePath(path As String) As String";
  steps_.push_back(
      {.kind = Step::Kind::Call, .name = declaration, .text = model::HostText{path, support::kUtf8}});
  const REALstring text = host_.MakeString(path);
  Answer answer = CallAny(host_, object_, declaration, {.text = text});
  host_.Release(text);
  return answer;
}

Answer Talk::Get(const std::string &property) {
  steps_.push_back({.kind = Step::Kind::Get, .name = property});
  if (property == "VolumeName") return {.text = host_.GetText(object_, property)};
  return {.number = host_.Get<int32_t>(object_, property)};
}

void Talk::Set(const std::string &property, int32_t value) {
  steps_.push_back({.kind = Step::Kind::Set, .name = property, .numbers = {value}});
  host_.Set<int32_t>(object_, property, value);
}

namespace {

// The length of the UTF-8 sequence that begins here and that a reader would see; 0 for bytes that are none,
// and for control characters, marks and halves of pairs.
size_t VisibleSequence(const std::string &bytes, size_t at) {
  const auto lead = static_cast<uint8_t>(bytes[at]);
  if (lead < 0x80) return lead >= 0x20 && lead != 0x7F && lead != '"' && lead != '\\' ? 1 : 0;
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
  if (length == 0 || at + length > bytes.size()) return 0;
  uint32_t codePoint = lead & (0xFFU >> (length + 1));
  for (size_t i = 1; i < length; ++i) {
    const auto next = static_cast<uint8_t>(bytes[at + i]);
    if ((next & 0xC0U) != 0x80) return 0;
    codePoint = codePoint << 6U | (next & 0x3FU);
  }
  const auto between = [codePoint](uint32_t first, uint32_t last) {
    return codePoint >= first && codePoint <= last;
  };
  const bool hidden = between(0x80, 0xA0) || between(0x300, 0x36F) || between(0x2000, 0x200F) ||
                      between(0x2028, 0x202F) || between(0xD800, 0xF8FF) || between(0xFE00, 0xFE0F) ||
                      codePoint == 0xFEFF || between(0xFFFE, 0xFFFF);
  return hidden ? 0 : length;
}

}  // namespace

std::string ShowText(const support::HostText &text) {
  if (text.isNull) return "no text";
  std::ostringstream out;
  out << '"';
  for (size_t at = 0; at < text.bytes.size();) {
    const size_t length = VisibleSequence(text.bytes, at);
    if (length == 1 || (length > 1 && text.encoding == support::kUtf8)) {
      out << text.bytes.substr(at, length);
      at += length;
    } else {
      out << "\\x" << std::hex << std::setw(2) << std::setfill('0')
          << (static_cast<unsigned>(text.bytes[at]) & 0xFFU) << std::dec;
      ++at;
    }
  }
  out << '"';
  if (text.encoding == support::kUntagged) {
    out << " untagged";
  } else if (text.encoding != support::kUtf8) {
    out << " in 0x" << std::hex << std::setw(4) << std::setfill('0') << text.encoding;
  }
  return out.str();
}

std::string Show(const std::string &declaration, const Answer &answer) {
  const std::string result = declaration.substr(declaration.rfind(' ') + 1);
  if (result == "String") return ShowText(answer.text);
  if (result == "FolderItem") return answer.isItem ? '<' + answer.itemPath + '>' : "no item";
  if (result == "Boolean") return answer.number == 1 ? "True" : answer.number == 0 ? "False" : "neither";
  return std::to_string(answer.number);
}

}  // namespace golden
