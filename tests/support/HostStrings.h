// The strings of the test host: counted, and never really freed, so that a string that is used or released
// after its last reference is noticed instead of crashing.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/HostTypes.h"

namespace support {

constexpr uint32_t kUtf16 = 0x0100;
constexpr uint32_t kAscii = 0x0600;
constexpr uint32_t kShiftJIS = 0x0A01;
constexpr uint32_t kUtf8 = 0x08000100;
constexpr uint32_t kUntagged = 0x0FFF;  // of a string that was built and never tagged

// What a host string holds.
struct HostText {
  bool isNull = true;
  std::string bytes{};
  uint32_t encoding = 0;

  friend bool operator==(const HostText &, const HostText &) = default;
};

inline HostText Text(std::string_view bytes, uint32_t encoding = kUtf8) {
  return {false, std::string(bytes), encoding};
}
void PrintTo(const HostText &text, std::ostream *out);

// The bytes of the text in another encoding. UTF-16 (high byte first), ASCII (each byte a character up to
// U+00FF) and UTF-8 are converted; between any others the bytes stay as they are.
std::string Convert(std::string_view bytes, uint32_t from, uint32_t to);

class HostStrings {
 public:
  // A new string with one reference.
  REALstring Make(std::string_view bytes, uint32_t encoding);

  // Drops one reference.
  void Release(REALstring string);

  // Whether the string is one of the host's and still has a reference; noted as a fault otherwise.
  bool Check(REALstring string, const char *use);

  [[nodiscard]] HostText Read(REALstring string);

  // Strings that still have references.
  [[nodiscard]] size_t Live() const;
  // Texts of the strings that still have references.
  [[nodiscard]] std::vector<std::string> LiveTexts() const;
  // The last made of them; null when there are none.
  [[nodiscard]] REALstring LastLive() const;
  [[nodiscard]] const std::vector<std::string> &Faults() const { return faults_; }

 private:
  struct Stored {
    REALstringStruct record{};
    std::string bytes{};  // the length byte and the characters
  };

  std::vector<std::unique_ptr<Stored>> strings_;  // in the order in which they were made
  std::map<REALstring, Stored *> known_;
  std::vector<std::string> faults_;
};

}  // namespace support
