#include "platform/FileReference.h"

#include <cstdint>
#include <new>

FileReference::FileReference(const FSSpec &spec) { FSpMakeFSRef(&spec, &mFileRef); }

FileReference::~FileReference() = default;

std::unique_ptr<cfstring> FileReference::GetPOSIXPathManually() const {
  constexpr uint32_t kPathRoom = 16384;
  const std::unique_ptr<uint8_t[]> path(new (std::nothrow) uint8_t[kPathRoom]);
  if (path == nullptr) return nullptr;
  const auto status = static_cast<int16_t>(FSRefMakePath(&mFileRef, path.get(), kPathRoom));
  if (status != noErr) return nullptr;
  const auto *text = reinterpret_cast<const char *>(path.get());
  return std::unique_ptr<cfstring>(new (std::nothrow) cfstring(text, kCFStringEncodingUTF8));
}

std::FILE *FileReference::fopen(const char *mode) const {
  const std::unique_ptr<cfstring> path = GetPOSIXPathManually();
  const char *bytes = path == nullptr ? nullptr : path->cString(kCFStringEncodingUTF8);
  return bytes == nullptr ? nullptr : std::fopen(bytes, mode);
}
