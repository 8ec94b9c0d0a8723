#include "host/runtime/HostString.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

#include "host/runtime/Ledger.h"

namespace zemhost {

REALstring newString(std::string_view bytes, uint32_t encoding) {
  constexpr size_t kAround = 2;  // the length byte in front, a terminator behind
  if (bytes.size() > std::numeric_limits<int32_t>::max() - kAround) return nullptr;
  void *block = std::malloc(sizeof(REALstringStruct) + bytes.size() + kAround);
  if (block == nullptr) return nullptr;
  auto *data = static_cast<uint8_t *>(block) + sizeof(REALstringStruct);
  data[0] = static_cast<uint8_t>(bytes.size() > 255 ? 255 : bytes.size());
  std::copy(bytes.begin(), bytes.end(), data + 1);
  data[bytes.size() + 1] = 0;
  auto *string = new (block) REALstringStruct{1, data, static_cast<int32_t>(bytes.size() + kAround),
                                              static_cast<int32_t>(bytes.size()), encoding};
  ledger::enter(string, &Accounts::strings);
  return string;
}

void retainString(REALstring string) {
  if (string != nullptr && ledger::isLive(string)) ++string->mPrivateUsageCount;
}

void releaseString(REALstring string) {
  if (string == nullptr || !ledger::isLive(string)) return;
  if (--string->mPrivateUsageCount > 0) return;
  ledger::strike(string, &Accounts::strings);
  std::free(string);
}

HostString HostString::fromBytes(std::string_view bytes, uint32_t encoding) {
  REALstring string = newString(bytes, encoding);
  if (string == nullptr) throw std::bad_alloc();
  return HostString(string);
}

std::string HostString::text() const {
  return convertText(bytes(), isKnownEncoding(encoding()) ? encoding() : kUtf8, kUtf8).bytes;
}

HostString HostString::convertedTo(uint32_t encoding) const {
  if (string_ == nullptr || string_->mEncoding == encoding) return *this;
  return fromBytes(convertText(bytes(), string_->mEncoding, encoding).bytes, encoding);
}

}  // namespace zemhost
