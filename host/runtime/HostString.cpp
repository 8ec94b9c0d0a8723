#include "host/runtime/HostString.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>

#include "host/runtime/LiveHandles.h"

namespace zemhost {
namespace {

// Every live string is linked into one ring, so that what a plug-in never releases can still be found. The
// characters stand behind the block.
struct StringBlock {
  StringBlock *previous;
  StringBlock *next;
  REALstringStruct record;
};

// The ring's fixed member, which is no string.
StringBlock &ring() {
  static StringBlock fixed = {&fixed, &fixed, {}};
  return fixed;
}

StringBlock *blockOf(REALstring string) {
  return reinterpret_cast<StringBlock *>(reinterpret_cast<char *>(string) - offsetof(StringBlock, record));
}

}  // namespace

REALstring newString(std::string_view bytes, uint32_t encoding) {
  constexpr int32_t kAround = 2;  // the length byte in front, a terminator behind
  if (bytes.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max() - kAround)) return nullptr;
  void *room = ::operator new(sizeof(StringBlock) + bytes.size() + kAround, std::nothrow);
  if (room == nullptr) return nullptr;
  auto *data = static_cast<uint8_t *>(room) + sizeof(StringBlock);
  data[0] = static_cast<uint8_t>(bytes.size() > 255 ? 255 : bytes.size());
  std::copy(bytes.begin(), bytes.end(), data + 1);
  data[bytes.size() + 1] = 0;
  const auto length = static_cast<int32_t>(bytes.size());
  auto *block = new (room) StringBlock{&ring(), ring().next, {1, data, length + kAround, length, encoding}};
  block->next->previous = block;
  ring().next = block;
  addHandle(&block->record, &LiveHandles::strings);
  return &block->record;
}

void retainString(REALstring string) {
  if (string != nullptr && isLiveHandle(string)) ++string->mPrivateUsageCount;
}

void releaseString(REALstring string) {
  if (string == nullptr || !isLiveHandle(string)) return;
  if (--string->mPrivateUsageCount > 0) return;
  removeHandle(string, &LiveHandles::strings);
  StringBlock *block = blockOf(string);
  block->previous->next = block->next;
  block->next->previous = block->previous;
  ::operator delete(block);
}

std::vector<HostString> liveStrings() {
  std::vector<HostString> live;
  for (StringBlock *block = ring().previous; block != &ring(); block = block->previous)
    live.push_back(HostString::share(&block->record));
  return live;
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
