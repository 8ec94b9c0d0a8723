#include "zemhost/files/Beneath.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <deque>
#include <fcntl.h>
#include <linux/openat2.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zemhost {

namespace {

using Names = std::deque<std::string>;

// Puts the names of a path before those that are left. An end without a name asks for a folder, as "." does.
void prepend(Names &names, std::string_view path) {
  if (path.ends_with('/')) names.emplace_front(".");
  while (!path.empty()) {
    const size_t slash = path.rfind('/');
    const std::string_view last = path.substr(slash + 1);  // npos + 1 is 0
    if (!last.empty()) names.emplace_front(last);
    path = path.substr(0, slash == std::string_view::npos ? 0 : slash);
  }
}

carbon::Descriptor failed(int error) {
  errno = error;
  return {};
}

}  // namespace

carbon::Descriptor openBeneathByHand(int folder, const std::string &path, int flags) {
  constexpr int kMostLinks = 40;
  if (path.empty()) return failed(ENOENT);
  if (path.front() == '/') return failed(EXDEV);
  Names names;
  prepend(names, path);
  // The folders on the way, so that ".." goes to where the way came from.
  std::vector<carbon::Descriptor> way;
  int links = 0;
  const auto here = [&] { return way.empty() ? folder : way.back().number(); };
  while (!names.empty()) {
    const std::string name = std::move(names.front());
    names.pop_front();
    if (name == ".") continue;
    if (name == "..") {
      if (way.empty()) return failed(EXDEV);
      way.pop_back();
      continue;
    }
    carbon::Descriptor next(openat(here(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!next || fstat(next.number(), &status) != 0) return {};
    if (S_ISLNK(status.st_mode) && (!names.empty() || (flags & O_NOFOLLOW) == 0)) {
      if (++links > kMostLinks) return failed(ELOOP);
      std::array<char, PATH_MAX> target{};
      const ssize_t length = readlinkat(next.number(), "", target.data(), target.size());
      if (length < 0) return {};
      if (target[0] == '/') return failed(EXDEV);
      prepend(names, {target.data(), static_cast<size_t>(length)});
    } else if (!names.empty() || S_ISDIR(status.st_mode)) {
      if (!S_ISDIR(status.st_mode)) return failed(ENOTDIR);
      way.push_back(std::move(next));
    } else {
      // A link that has taken the name meanwhile is not followed.
      return carbon::Descriptor(openat(here(), name.c_str(), flags | O_NOFOLLOW | O_CLOEXEC));
    }
  }
  return carbon::Descriptor(openat(here(), ".", flags | O_CLOEXEC));
}

carbon::Descriptor openBeneath(int folder, const std::string &path, int flags) {
  open_how how{};
  how.flags = static_cast<uint64_t>(flags | O_CLOEXEC);
  how.resolve = RESOLVE_BENEATH;
  for (int attempt = 0; attempt < 8; ++attempt) {
    carbon::Descriptor file(static_cast<int>(syscall(SYS_openat2, folder, path.c_str(), &how, sizeof how)));
    if (file) return file;
    // Older systems have no such call, and some sandboxes answer so to every call they do not know.
    if (errno == ENOSYS || errno == EPERM) return openBeneathByHand(folder, path, flags);
    // A folder was renamed while the path was followed; nothing is known of where it leads.
    if (errno != EAGAIN) return {};
  }
  return {};
}

}  // namespace zemhost
