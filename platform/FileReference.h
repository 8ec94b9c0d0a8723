#pragma once

#include <cstdio>
#include <memory>

#include "platform/carbon/CarbonFiles.h"
#include "platform/cfstring.h"

// A file that a host folder item names, to be opened as a C stream.
class FileReference {
 public:
  // Names the specified file. A file that does not exist shows up as one that cannot be opened.
  explicit FileReference(const FSSpec &spec);
  virtual ~FileReference();

  FileReference(const FileReference &) = default;
  FileReference &operator=(const FileReference &) = default;

  // The file's POSIX path as a new string in UTF-8, owned by the caller. Null when there is no such file, the
  // path is longer than 16,383 bytes, or there is no memory.
  std::unique_ptr<cfstring> GetPOSIXPathManually() const;

  // Opens the file with the C library's fopen and this mode; the caller closes the stream with fclose. Null
  // when the file has no path or does not open.
  std::FILE *fopen(const char *mode) const;

 private:
  FSRef mFileRef = {};
};
