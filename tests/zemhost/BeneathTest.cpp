#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <vector>

#include "tests/support/TemporaryFolder.h"
#include "zemhost/files/Beneath.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;

class Beneath : public testing::Test {
 protected:
  Beneath() {
    folder_.write("secret", "outside");
    folder_.write("root/file", "in root");
    folder_.write("root/deep/down/file", "deep");
    const fs::path root = folder_.path() / "root";
    fs::create_symlink("../secret", root / "out");
    fs::create_symlink("..", root / "up");
    fs::create_symlink(folder_.path() / "root" / "file", root / "absolute");
    fs::create_symlink("deep/down", root / "in");
    fs::create_symlink("../../file", root / "deep" / "down" / "back");
    fs::create_symlink("../../../secret", root / "deep" / "down" / "away");
    fs::create_symlink("loop", root / "loop");
    fs::create_symlink("nowhere", root / "dangling");
    root_ = carbon::Descriptor(open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  }

  using Open = carbon::Descriptor (*)(int, const std::string &, int);

  // What can be read there, or the error's name.
  std::string read(Open opened, const std::string &path, int flags = O_RDONLY) const {
    const carbon::Descriptor file = opened(root_.number(), path, flags);
    if (!file) return strerrorname_np(errno);
    struct stat status {};
    if (fstat(file.number(), &status) != 0) return "no status";
    if (S_ISDIR(status.st_mode)) return "a folder";
    if (S_ISLNK(status.st_mode)) return "a link";
    std::array<char, 32> text{};
    const ssize_t length = ::read(file.number(), text.data(), text.size());
    return length < 0 ? strerrorname_np(errno) : std::string(text.data(), static_cast<size_t>(length));
  }

  support::TemporaryFolder folder_;
  carbon::Descriptor root_;
};

TEST_F(Beneath, FilesBelowTheFolderAreOpenedThroughLinksThatStay) {
  for (const Open way : {Open(openBeneath), Open(openBeneathByHand)}) {
    EXPECT_EQ(read(way, "file"), "in root");
    EXPECT_EQ(read(way, "deep/down/file"), "deep");
    EXPECT_EQ(read(way, "in/file"), "deep");
    EXPECT_EQ(read(way, "in/back"), "in root");
    EXPECT_EQ(read(way, "deep/../file"), "in root");
    EXPECT_EQ(read(way, "."), "a folder");
  }
}

TEST_F(Beneath, NothingOutsideIsOpened) {
  for (const Open way : {Open(openBeneath), Open(openBeneathByHand)}) {
    for (const char *path : {"../secret", "out", "up", "up/secret", "absolute", "in/away", "/etc/passwd",
                             "deep/../../secret", "in/../../../secret"})
      EXPECT_EQ(read(way, path), "EXDEV") << path;
  }
}

TEST_F(Beneath, BothWaysAgree) {
  const std::vector<std::string> names = {"file",     "deep", "down", "in",    "out", "up",
                                          "absolute", "back", "away", "loop",  "..",  ".",
                                          "dangling", "",     "none", "secret"};
  for (const std::string &first : names) {
    for (const std::string &second : names) {
      for (const std::string &third : names) {
        std::string path = first;
        path.append("/").append(second);
        if (!third.empty()) path.append("/").append(third);
        for (const int flags : {O_RDONLY, O_RDONLY | O_DIRECTORY, O_PATH | O_NOFOLLOW}) {
          EXPECT_EQ(read(openBeneath, path, flags), read(openBeneathByHand, path, flags))
              << path << " " << flags;
        }
      }
    }
  }
}

// Lets the process go on without the call, as an older system would.
bool forbidCall(long number, int error) {
  std::array<sock_filter, 4> steps = {{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  }};
  sock_fprog program = {static_cast<unsigned short>(steps.size()), steps.data()};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST_F(Beneath, SystemsWithoutTheCallDoItByHand) {
  for (const int error : {ENOSYS, EPERM}) {
    const auto withoutIt = [&] {
      if (!forbidCall(SYS_openat2, error)) std::_Exit(7);
      std::_Exit(read(openBeneath, "in/file") == "deep" && read(openBeneath, "out") == "EXDEV" ? 0 : 1);
    };
    EXPECT_EXIT(withoutIt(), testing::ExitedWithCode(0), "") << error;
  }
}

}  // namespace
}  // namespace zemhost
