#include "zemhost/files/OutputFile.h"

#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

#include "host/Error.h"
#include "zemhost/files/PendingFile.h"

namespace zemhost {

namespace {

constexpr size_t kBufferSize = 65536;

// The number of the open file that the system gives this name.
std::optional<int> namedDescriptor(const std::filesystem::path &target) {
  const std::string name = target.lexically_normal().string();
  if (name == "/dev/stdout") return STDOUT_FILENO;
  if (name == "/dev/stderr") return STDERR_FILENO;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    if (!name.starts_with(folder)) continue;
    int number = -1;
    const char *const end = name.data() + name.size();
    const auto [last, error] = std::from_chars(name.data() + folder.size(), end, number);
    if (error == std::errc() && last == end && number >= 0) return number;
  }
  return std::nullopt;
}

bool isPipe(const std::filesystem::path &target) {
  struct stat status {};
  return lstat(target.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

}  // namespace

bool namesStandardOutput(const std::filesystem::path &target) {
  return target.empty() || target == "-" || namedDescriptor(target) == STDOUT_FILENO;
}

OutputFile::OutputFile(const std::filesystem::path &target)
    : isStandardOutput_(namesStandardOutput(target)),
      name_(isStandardOutput_ ? "standard output" : target.string()) {
  if (isStandardOutput_) return;
  if (const auto number = namedDescriptor(target)) {
    stream_ = carbon::Descriptor(fcntl(*number, F_DUPFD_CLOEXEC, 0));
  } else if (isPipe(target)) {
    stream_ = carbon::Descriptor(open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW));
  } else {
    file_ = std::make_unique<PendingFile>(target);
    return;
  }
  if (!stream_) throw HostError(name_, errno);
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

bool OutputFile::isTerminal() const { return isatty(descriptor()) != 0; }

int OutputFile::descriptor() const {
  if (isStandardOutput_) return STDOUT_FILENO;
  return file_ ? file_->descriptor() : stream_.number();
}

void OutputFile::flush() {
  writeAll(descriptor(), buffer_, name_);
  buffer_.clear();
}

}  // namespace zemhost
