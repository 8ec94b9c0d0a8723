#include "platform/cfstring.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace {

CFStringRef createString(const char *str, unsigned long encoding) {
  if (str == nullptr) return nullptr;
  return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const uint8_t *>(str),
                                 static_cast<CFIndex>(std::strlen(str)),
                                 static_cast<CFStringEncoding>(encoding), false);
}

}  // namespace

cfstring::cfstring(const char *str, unsigned long encoding) : mString(createString(str, encoding)) {}

cfstring::~cfstring() { release(); }

const char *cfstring::cString(unsigned long encoding) {
  const auto code = static_cast<CFStringEncoding>(encoding);
  const CFIndex length = mString == nullptr ? 0 : CFStringGetLength(mString);
  const CFIndex max = std::max<CFIndex>(CFStringGetMaximumSizeForEncoding(length, code), 0);
  // Zeros all through, so that the text ends within the buffer whatever the conversion leaves there.
  std::unique_ptr<char[]> buffer(new (std::nothrow) char[static_cast<size_t>(max) + 1]());
  if (buffer == nullptr) return nullptr;
  if (mString != nullptr) CFStringGetCString(mString, buffer.get(), max, code);
  mCString = std::move(buffer);
  return mCString.get();
}

void cfstring::release() {
  if (mString != nullptr) CFRelease(mString);
  mString = nullptr;
  mCString.reset();
}
