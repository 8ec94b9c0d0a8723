// Calls a method by its declaration alone, with arguments of the kinds it asks for.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/TestHost.h"

namespace support {

struct Answer {
  int32_t number = 0;
  HostText text{};
  bool isItem = false;
  std::string itemPath{};  // colon-separated

  // What a method answers that has nothing to say.
  [[nodiscard]] bool IsNoValue() const { return number == 0 && text.isNull && !isItem; }
  friend bool operator==(const Answer &, const Answer &) = default;
};
void PrintTo(const Answer &answer, std::ostream *out);

// The colon-separated path of a specification, or the error that there is in its place.
std::string PathOf(const FSSpec &spec);

// The arguments: as many of the numbers as the declaration has Integers and Booleans, in order.
struct Arguments {
  std::array<int32_t, 3> numbers{};
  REALstring text = nullptr;
  REALfolderItem item = nullptr;
};

// The kinds of a declaration's arguments and of its result, as "ii>s": i Integer or Boolean, s String, f
// FolderItem, v nothing.
std::string ShapeOf(std::string_view declaration);

// What the method answers; a string or an item that it returns is released. Throws std::logic_error for a
// shape that no method of the class has.
Answer CallAny(TestHost &host, REALobject object, std::string_view declaration, const Arguments &arguments);

}  // namespace support
