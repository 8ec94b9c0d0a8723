#include "tests/support/AnyCall.h"

#include <functional>
#include <map>
#include <stdexcept>

#include "platform/carbon/CarbonFiles.h"

namespace support {

namespace {

using Caller = std::function<Answer(TestHost &, REALobject, std::string_view, const Arguments &)>;

Answer AnswerOf(TestHost & /*host*/, int32_t number) { return {.number = number}; }
Answer AnswerOf(TestHost &host, REALstring string) { return {.text = host.Take(string)}; }
Answer AnswerOf(TestHost &host, REALfolderItem item) {
  if (item == nullptr) return {};
  const FSSpec spec = host.SpecOf(item);
  host.Release(item);
  return {.isItem = true, .itemPath = PathOf(spec)};
}

// A call with the arguments that `pick` takes out of all.
template <typename Result, typename Pick>
Caller Calling(Pick pick) {
  return [pick](TestHost &host, REALobject object, std::string_view declaration, const Arguments &all) {
    return std::apply(
        [&](auto... arguments) {
          if constexpr (std::is_void_v<Result>) {
            host.Call<void>(object, declaration, arguments...);
            return Answer{};
          } else {
            return AnswerOf(host, host.Call<Result>(object, declaration, arguments...));
          }
        },
        pick(all));
  };
}

template <typename Result>
Caller Numbers(size_t count) {
  if (count == 0) return Calling<Result>([](const Arguments & /*all*/) { return std::tuple<>(); });
  if (count == 1) return Calling<Result>([](const Arguments &all) { return std::tuple(all.numbers[0]); });
  if (count == 2) {
    return Calling<Result>([](const Arguments &all) { return std::tuple(all.numbers[0], all.numbers[1]); });
  }
  return Calling<Result>(
      [](const Arguments &all) { return std::tuple(all.numbers[0], all.numbers[1], all.numbers[2]); });
}

}  // namespace

std::string PathOf(const FSSpec &spec) {
  std::array<char, 4096> path{};
  const OSStatus result = CarbonPathFromSpec(&spec, path.data(), path.size());
  return result == noErr ? path.data() : "error " + std::to_string(result);
}

void PrintTo(const Answer &answer, std::ostream *out) {
  *out << answer.number << ", ";
  if (answer.isItem) *out << "an item at " << answer.itemPath << ", ";
  PrintTo(answer.text, out);
}

std::string ShapeOf(std::string_view declaration) {
  std::string shape;
  const auto kind = [](std::string_view type) {
    return type.starts_with("String") ? 's' : type.starts_with("FolderItem") ? 'f' : 'i';
  };
  const size_t close = declaration.find(')');
  std::string_view arguments = declaration.substr(0, close == std::string_view::npos ? 0 : close);
  for (size_t as = arguments.find(" As "); as != std::string_view::npos; as = arguments.find(" As ")) {
    arguments.remove_prefix(as + 4);
    shape += kind(arguments);
  }
  const std::string_view tail = close == std::string_view::npos ? declaration : declaration.substr(close);
  const size_t as = tail.find(" As ");
  return shape + '>' + (as == std::string_view::npos ? 'v' : kind(tail.substr(as + 4)));
}

Answer CallAny(TestHost &host, REALobject object, std::string_view declaration, const Arguments &arguments) {
  static const std::map<std::string, Caller, std::less<>> kCallers = {
      {">v", Numbers<void>(0)},
      {">i", Numbers<int32_t>(0)},
      {"i>i", Numbers<int32_t>(1)},
      {"i>s", Numbers<REALstring>(1)},
      {"i>f", Numbers<REALfolderItem>(1)},
      {"ii>v", Numbers<void>(2)},
      {"ii>i", Numbers<int32_t>(2)},
      {"ii>s", Numbers<REALstring>(2)},
      {"ii>f", Numbers<REALfolderItem>(2)},
      {"iii>v", Numbers<void>(3)},
      {"iii>i", Numbers<int32_t>(3)},
      {"iii>s", Numbers<REALstring>(3)},
      {"is>v", Calling<void>([](const Arguments &all) { return std::tuple(all.numbers[0], all.text); })},
      {"s>s", Calling<REALstring>([](const Arguments &all) { return std::tuple(all.text); })},
      {"f>i", Calling<int32_t>([](const Arguments &all) { return std::tuple(all.item); })}};
  const auto caller = kCallers.find(ShapeOf(declaration));
  if (caller == kCallers.end()) throw std::logic_error("no such shape: " + std::string(declaration));
  return caller->second(host, object, declaration, arguments);
}

}  // namespace support
