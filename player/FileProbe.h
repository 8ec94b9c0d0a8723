#pragma once

// A look at a database file before the plug-in reads it, so that a file it could only refuse, or would show
// as an empty library, is named for what it is.

#include <cstdint>
#include <filesystem>
#include <string>

namespace player {

enum class FileContent {
  Database,    // can be loaded
  Compressed,  // a database whose body is a zlib stream; can be loaded when that is inflated
  Encrypted,   // a library whose body cannot be read
  Damaged,     // a database that is cut off or overwritten, or a file of no known kind
  Unusable     // anything else
};

struct FileProbe {
  FileContent content = FileContent::Unusable;
  std::string reason;  // for the last three: what is wrong, to stand after "FILE: "
};

// Looks at the file's header and first chunk, at most a few hundred bytes whatever its size. Never throws for
// a file that cannot be opened or read: that is a reason too.
FileProbe probeFile(const std::filesystem::path &file);

}  // namespace player
