#pragma once

// A value of host code: what goes into a method or property and what comes back.

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "host/runtime/FolderItem.h"
#include "host/runtime/HostString.h"

namespace zemhost {

enum class Kind { None, Integer, Boolean, String, FolderItem };

// The kind's name in host code; "nothing" for None.
const char *kindName(Kind kind);

// One value, with the reference it holds. The readers throw HostError when the value is of another kind.
class Value {
 public:
  Value() = default;  // no result
  Value(bool value) : value_(Truth{value ? 1 : 0}) {}
  Value(int32_t value) : value_(value) {}
  Value(uint32_t bits) : value_(static_cast<int32_t>(bits)) {}
  Value(const char *utf8) : value_(HostString::fromUtf8(utf8)) {}
  Value(std::string_view utf8) : value_(HostString::fromUtf8(utf8)) {}
  Value(const std::string &utf8) : value_(HostString::fromUtf8(utf8)) {}
  Value(HostString string) : value_(std::move(string)) {}
  Value(FolderItem item) : value_(std::move(item)) {}

  // A Boolean that passes this 32-bit value, which need not be 0 or 1.
  static Value rawBoolean(int32_t raw);

  Kind kind() const { return static_cast<Kind>(value_.index()); }
  // True for the null string and the nil folder item.
  bool isNil() const;

  int32_t integer() const;
  bool boolean() const { return rawBoolean() != 0; }
  int32_t rawBoolean() const;
  const HostString &string() const;
  const FolderItem &folderItem() const;

  // Short forms for strings: the text as UTF-8, the stored bytes, the encoding code.
  std::string text() const { return string().text(); }
  std::string_view bytes() const { return string().bytes(); }
  uint32_t encoding() const { return string().encoding(); }

  // The value on one line as host code would write it, with the encoding's name for a string:
  //   12    True    "Blue ""Train""" (UTF-8)    nil    "iPod:Music:F00:A.mp3" (no such file)
  // Control characters show as Chr(9); a call without a result gives "(no result)".
  std::string describe() const;

 private:
  struct Truth {
    int32_t raw;
  };
  std::variant<std::monostate, int32_t, Truth, HostString, FolderItem> value_;
};

}  // namespace zemhost
