#include "tests/support/ModelAnswer.h"

#include <stdexcept>

#include "platform/carbon/CarbonFiles.h"
#include "tests/model/Methods.h"
#include "tests/platform/MountedVolume.h"

namespace support {

namespace {

const model::Method &MethodNamed(std::string_view declaration) {
  for (const model::Method &method : model::Methods())
    if (method.declaration == declaration) return method;
  throw std::logic_error("the model has no method " + std::string(declaration));
}

Answer AnswerOf(const model::Result &result) {
  Answer answer;
  if (const auto *number = std::get_if<int32_t>(&result)) answer.number = *number;
  if (const auto *text = std::get_if<std::optional<model::HostText>>(&result)) answer.text = TextOf(*text);
  if (const auto *item = std::get_if<model::FolderItem>(&result)) {
    answer.isItem = item->description.has_value();
    answer.itemPath = item->description.value_or("");
  }
  return answer;
}

}  // namespace

std::optional<model::HostText> ModelHost::Build(const std::string &bytes) {
  if (buildFails) return std::nullopt;
  return model::HostText{bytes, kUntagged};
}

std::optional<model::HostText> ModelHost::Convert(const model::HostText &text, uint32_t encoding) {
  conversions.push_back({text.bytes, text.encoding, encoding});
  if (convertFails) return std::nullopt;
  return model::HostText{support::Convert(text.bytes, text.encoding, encoding), encoding};
}

std::optional<std::string> ModelHost::ItemOfPath(const std::string &path) {
  FSSpec spec{};
  const OSErr result = makeSpec(path, spec);
  if (result != noErr && result != fnfErr) return std::nullopt;
  return PathOf(spec);
}

std::optional<model::HostText> ModelHost::PathOfItemOfPath(const std::string &path) {
  FSSpec spec{};
  makeSpec(path, spec);
  std::array<char, 4096> full{};
  if (CarbonPathFromSpec(&spec, full.data(), full.size()) != noErr) return std::nullopt;
  return model::HostText{full.data(), kUtf8};
}

HostText TextOf(const std::optional<model::HostText> &text) {
  return text ? Text(text->bytes, text->encoding) : HostText{};
}

Answer AskModel(model::Object &object, std::string_view declaration, const ModelArguments &arguments) {
  std::vector<model::Argument> inOrder;
  size_t number = 0;
  for (const char kind : ShapeOf(declaration)) {
    if (kind == '>') break;
    if (kind == 'i') inOrder.emplace_back(arguments.numbers.at(number++));
    if (kind == 's') inOrder.emplace_back(arguments.text);
    if (kind == 'f') inOrder.emplace_back(arguments.file);
  }
  return AnswerOf(MethodNamed(declaration).call({object, inOrder}));
}

}  // namespace support
