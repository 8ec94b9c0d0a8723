#pragma once

// The host's strings: reference-counted bytes with an encoding code, in the record that plug-ins read.

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/text/TextEncoding.h"
#include "sdk/HostTypes.h"

namespace zemhost {

// A new string with one reference, owned by the caller; the bytes are copied. Null when there is no memory
// or the text is longer than a 32-bit length can say.
REALstring newString(std::string_view bytes, uint32_t encoding);

// Adds a reference, or drops one; the last one frees the string. Null is allowed.
void retainString(REALstring string);
void releaseString(REALstring string);

// Owns one reference to a host string, or is the null (no-value) string.
class HostString {
 public:
  HostString() = default;
  HostString(const HostString &other) : HostString(share(other.string_)) {}
  HostString(HostString &&other) noexcept : string_(std::exchange(other.string_, nullptr)) {}
  HostString &operator=(HostString other) noexcept {
    std::swap(string_, other.string_);
    return *this;
  }
  ~HostString() { releaseString(string_); }

  // A new string of these bytes. Throws std::bad_alloc when there is no room for them.
  static HostString fromBytes(std::string_view bytes, uint32_t encoding);
  static HostString fromUtf8(std::string_view text) { return fromBytes(text, kUtf8); }

  // Takes over the reference that the caller owns.
  static HostString adopt(REALstring string) { return HostString(string); }
  // Adds a reference of its own.
  static HostString share(REALstring string) {
    retainString(string);
    return HostString(string);
  }

  // False for the null string; an empty string is true.
  explicit operator bool() const { return string_ != nullptr; }

  // The bytes as they are stored, valid as long as this object; empty for the null string.
  std::string_view bytes() const {
    return {REALstringStruct::CString(string_), static_cast<size_t>(REALstringStruct::Length(string_))};
  }
  // The Mac OS encoding code; 0 for the null string.
  uint32_t encoding() const { return string_ == nullptr ? 0 : string_->mEncoding; }

  // The text as valid UTF-8, by the string's encoding; text in an unknown encoding is read as UTF-8.
  // Invalid input shows as U+FFFD. Empty for the null string.
  std::string text() const;

  // A string of the same text in another encoding; null for the null string.
  HostString convertedTo(uint32_t encoding) const;

  // The record, still owned by this object; null for the null string.
  REALstring handle() const { return string_; }

 private:
  explicit HostString(REALstring string) : string_(string) {}

  REALstring string_ = nullptr;
};

// Every live string of the process, oldest first: what is left when a plug-in forgot to release some.
std::vector<HostString> liveStrings();

}  // namespace zemhost
