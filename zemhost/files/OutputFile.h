#pragma once

// What a command writes, to a file or to standard output.
//
//   OutputFile out("list.m3u8");        // "-" or nothing: standard output
//   out.write(m3uHeading());
//   for (...) out.write(m3uEntry(song));
//   out.finish();
//
// A file appears under its name only with finish(); whatever ends the work before leaves the name as it was.
// A pipe with a name, and what the program has open already ("/dev/stdout", "/dev/fd/3"), are written to as
// the bytes come, and never replaced.

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "platform/carbon/Descriptor.h"

namespace zemhost {

class PendingFile;

// Whether a target stands for standard output: nothing, "-", and the system's own names of it.
bool namesStandardOutput(const std::filesystem::path &target);

class OutputFile {
 public:
  // Throws HostError, naming the file, when it cannot be written there: see PendingFile. A pipe with a name
  // is opened when somebody reads it, and not before.
  explicit OutputFile(const std::filesystem::path &target);
  OutputFile(const OutputFile &) = delete;
  OutputFile &operator=(const OutputFile &) = delete;
  ~OutputFile();

  // Appends bytes, through a buffer. Throws HostError, naming the file and the reason, when they do not fit.
  void write(std::string_view bytes);

  // Writes what is in the buffer, and brings the file under its name. Throws HostError as write() does.
  void finish();

  // Whether what is written shows on a terminal.
  bool isTerminal() const;

 private:
  void flush();

  int descriptor() const;

  bool isStandardOutput_;
  std::string name_;                   // in messages
  std::unique_ptr<PendingFile> file_;  // where a file is to appear
  carbon::Descriptor stream_;          // what is open already, or a pipe
  std::string buffer_;
};

}  // namespace zemhost
