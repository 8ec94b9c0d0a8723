#include "zemhost/files/OutputFile.h"

#include <unistd.h>

#include "zemhost/files/PendingFile.h"

namespace zemhost {

namespace {

constexpr size_t kBufferSize = 65536;

}  // namespace

OutputFile::OutputFile(const std::filesystem::path &target) {
  if (!target.empty() && target != "-") file_ = std::make_unique<PendingFile>(target);
}

OutputFile::~OutputFile() = default;

void OutputFile::write(std::string_view bytes) {
  buffer_.append(bytes);
  if (buffer_.size() >= kBufferSize) flush();
}

void OutputFile::finish() {
  flush();
  if (file_) file_->commit();
}

void OutputFile::flush() {
  if (file_) {
    writeAll(file_->descriptor(), buffer_, file_->name());
  } else {
    writeAll(STDOUT_FILENO, buffer_, "standard output");
  }
  buffer_.clear();
}

}  // namespace zemhost
