#pragma once

// What a command writes, to a file or to standard output.
//
//   OutputFile out("list.m3u8");        // "-" or nothing: standard output
//   out.write(m3uHeading());
//   for (...) out.write(m3uEntry(song));
//   out.finish();
//
// A file appears under its name only with finish(); whatever ends the work before leaves the name as it was.

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace zemhost {

class PendingFile;

class OutputFile {
 public:
  // Throws HostError, naming the file, when it cannot be written there: see PendingFile.
  explicit OutputFile(const std::filesystem::path &target);
  OutputFile(const OutputFile &) = delete;
  OutputFile &operator=(const OutputFile &) = delete;
  ~OutputFile();

  // Appends bytes, through a buffer. Throws HostError, naming the file and the reason, when they do not fit.
  void write(std::string_view bytes);

  // Writes what is in the buffer, and brings the file under its name. Throws HostError as write() does.
  void finish();

  bool isStandardOutput() const { return file_ == nullptr; }

 private:
  void flush();

  std::unique_ptr<PendingFile> file_;  // null: standard output
  std::string buffer_;
};

}  // namespace zemhost
