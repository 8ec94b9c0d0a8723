#include "platform/carbon/CarbonFiles.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/carbon/FileManager.h"

namespace {

carbon::FileManager &fileManager() {
  static carbon::FileManager manager;
  return manager;
}

// The result of the call, or the code of its failure. What else can be thrown comes from missing memory.
template <typename Call>
OSErr resultOf(const Call &call) noexcept {
  try {
    return call();
  } catch (const carbon::Failure &failure) {
    return failure.code;
  } catch (...) {
    return memFullErr;
  }
}

// Writes the path that the call makes; a failure to make one means that there is nothing to name.
template <typename Call>
OSStatus writePath(char *buffer, uint32_t size, const Call &makePath) noexcept {
  bool fits = false;
  const OSErr made = resultOf([&] {
    const std::string path = makePath();
    fits = path.size() < size;
    if (fits) std::memcpy(buffer, path.c_str(), path.size() + 1);
    return noErr;
  });
  if (made != noErr) return made == memFullErr ? memFullErr : fnfErr;
  return fits ? noErr : pathTooLongErr;
}

}  // namespace

OSErr FSMakeFSSpec(int16_t vRefNum, int32_t dirID, ConstStr255Param fileName, FSSpec *spec) {
  if (spec == nullptr) return paramErr;
  if (fileName == nullptr) return bdNamErr;
  const std::string_view path(reinterpret_cast<const char *>(fileName) + 1, fileName[0]);
  return resultOf([&] { return fileManager().makeSpec(vRefNum, dirID, path, *spec); });
}

OSErr FSpMakeFSRef(const FSSpec *spec, FSRef *ref) {
  if (ref == nullptr) return paramErr;
  *ref = {};
  if (spec == nullptr) return paramErr;
  return resultOf([&] {
    *ref = fileManager().makeRef(*spec);
    return noErr;
  });
}

OSStatus FSRefMakePath(const FSRef *ref, uint8_t *buffer, uint32_t bufferSize) {
  if (ref == nullptr || buffer == nullptr) return paramErr;
  return writePath(reinterpret_cast<char *>(buffer), bufferSize,
                   [&] { return fileManager().posixPath(*ref); });
}

Ptr NewPtr(Size byteCount) {
  return byteCount < 0 ? nullptr
                       : static_cast<Ptr>(std::malloc(static_cast<size_t>(std::max(byteCount, 1L))));
}

OSErr CarbonMountVolume(const char *name, const char *posixRoot) {
  if (name == nullptr) return bdNamErr;
  if (posixRoot == nullptr) return fnfErr;
  return resultOf([&] {
    fileManager().mount(name, posixRoot);
    return noErr;
  });
}

OSErr CarbonSpecFromPath(const char *posixPath, FSSpec *spec) {
  if (spec == nullptr) return paramErr;
  if (posixPath == nullptr) return bdNamErr;
  return resultOf([&] { return fileManager().specFromPath(posixPath, *spec); });
}

OSStatus CarbonPathFromSpec(const FSSpec *spec, char *buffer, uint32_t size) {
  if (spec == nullptr || buffer == nullptr) return paramErr;
  return writePath(buffer, size, [&] { return fileManager().macPath(*spec); });
}
