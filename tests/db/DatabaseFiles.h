// Hands files to the loader, and the small library that most tests of the loader start from.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "db/CiTunesDB.h"
#include "samples/DatabaseWriter.h"

namespace db_test {

struct CloseFile {
  void operator()(FILE *file) const { (void)std::fclose(file); }
};
using OwnedFile = std::unique_ptr<FILE, CloseFile>;

// A stream over a copy of the bytes, which lives as long as the stream does.
class MemoryFile {
 public:
  explicit MemoryFile(std::string bytes)
      : bytes_(std::move(bytes)), file_(fmemopen(bytes_.data(), bytes_.size(), "rb")) {}

  [[nodiscard]] FILE *Stream() const { return file_.get(); }

 private:
  std::string bytes_;
  OwnedFile file_;
};

// A stream that has all the bytes by its size and fails to deliver them from `failsAt` on.
struct FailingFile {
  std::string bytes;
  size_t failsAt;
  size_t at = 0;

  static ssize_t Read(void *cookie, char *buffer, size_t n);
  static int Seek(void *cookie, off64_t *offset, int whence);
  OwnedFile Open() { return OwnedFile(fopencookie(this, "rb", {Read, nullptr, Seek, nullptr})); }
};

inline int32_t Load(CiTunesDB &database, const std::string &bytes) {
  return database.LoadiTunesDB(MemoryFile(bytes).Stream());
}

// Every kind of chunk that matters, in at most 2 KB: three songs (one without objects, two that share a track
// ID, one with a location or a path), three playlists with entries of known, repeated and unknown IDs, other
// objects, a raw body, an odd text, and a data set of another type at each end.
std::string SmallLibrary(samples::Variant variant);

// A text as the database keeps it: UTF-16, high byte first.
std::string HighByteFirst(const std::u16string &text);

// The encoding code of UTF-16 text loaded from a file of the variant.
constexpr uint32_t Utf16Code(samples::Variant variant) {
  return variant == samples::Variant::LittleEndian ? 16777216U : 1U;
}

}  // namespace db_test
