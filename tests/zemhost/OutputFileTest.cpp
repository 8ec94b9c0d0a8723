#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/Error.h"
#include "tests/support/TemporaryFolder.h"
#include "zemhost/files/OutputFile.h"
#include "zemhost/files/PendingFile.h"
#include "zemhost/files/TemporaryPath.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string bytesOf(const fs::path &file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> namesIn(const fs::path &folder) {
  std::vector<std::string> names;
  for (const auto &entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  return names;
}

std::string refusal(const fs::path &target) {
  try {
    const OutputFile file(target);
    return "made";
  } catch (const HostError &error) {
    return error.what();
  }
}

TEST(OutputFile, IsCompleteUnderItsNameAndAlone) {
  const support::TemporaryFolder folder;
  const fs::path target = folder.path() / "out.csv";
  std::string expected;
  OutputFile file(target);
  for (int i = 0; i < 100'000; ++i) {
    file.write(std::to_string(i) + "\n");
    expected += std::to_string(i) + "\n";
  }
  EXPECT_FALSE(fs::exists(target));
  file.finish();
  EXPECT_EQ(bytesOf(target), expected);
  EXPECT_THAT(namesIn(folder.path()), ElementsAre("out.csv"));
}

TEST(OutputFile, LeftUnfinishedLeavesTheOldFileAndNothingElse) {
  const support::TemporaryFolder folder;
  const fs::path target = folder.write("out.csv", "old");
  {
    OutputFile file(target);
    file.write(std::string(1 << 20, 'x'));
    EXPECT_EQ(namesIn(folder.path()).size(), 2U);
  }
  EXPECT_EQ(bytesOf(target), "old");
  EXPECT_THAT(namesIn(folder.path()), ElementsAre("out.csv"));
}

TEST(OutputFile, ReplacesAFileAndKeepsItsPermissions) {
  const support::TemporaryFolder folder;
  const fs::path target = folder.write("out.csv", "old");
  ASSERT_EQ(chmod(target.c_str(), 0640), 0);
  OutputFile file(target);
  file.write("new");
  file.finish();
  EXPECT_EQ(bytesOf(target), "new");
  EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
}

TEST(OutputFile, NewFileHasThePermissionsOfAnyOther) {
  const support::TemporaryFolder folder;
  const fs::path target = folder.path() / "out.csv";
  OutputFile(target).finish();
  EXPECT_EQ(fs::status(target).permissions(), fs::status(folder.write("other", "")).permissions());
}

TEST(OutputFile, RefusesWhatIsNoRegularFileAndNamesIt) {
  const support::TemporaryFolder folder;
  const fs::path file = folder.write("file", "text");
  fs::create_symlink(file, folder.path() / "link");
  EXPECT_EQ(refusal(folder.path()), folder.path().string() + ": Is a directory");
  EXPECT_THAT(refusal(folder.path() / "link"), HasSubstr("/link: this is a symbolic link"));
  EXPECT_EQ(refusal("/dev/fd/987"), "/dev/fd/987: Bad file descriptor");
  EXPECT_EQ(refusal("/dev/full"), "/dev/full: this is not a regular file");
  EXPECT_THAT(refusal(folder.path() / "none" / "out"), HasSubstr("/none/out: No such file or directory"));
  EXPECT_THAT(refusal(file / "out"), HasSubstr("/file/out: Not a directory"));
  EXPECT_EQ(bytesOf(file), "text");
  EXPECT_EQ(namesIn(folder.path()).size(), 2U);
}

TEST(OutputFile, NameWithoutAFolderLiesInTheCurrentOne) {
  const support::TemporaryFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  OutputFile file("out.csv");
  file.write("text");
  file.finish();
  fs::current_path(before);
  EXPECT_EQ(bytesOf(folder.path() / "out.csv"), "text");
}

TEST(OutputFile, NothingADashAndTheSystemsNamesAreStandardOutput) {
  for (const char *const name : {"", "-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"}) {
    EXPECT_TRUE(namesStandardOutput(name));
    testing::internal::CaptureStdout();
    OutputFile file{name};
    file.write("text\n");
    file.finish();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "text\n");
  }
}

TEST(OutputFile, PipeIsWrittenAndNotReplaced) {
  const support::TemporaryFolder folder;
  const fs::path pipe = folder.path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const carbon::Descriptor reader(open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  OutputFile file(pipe);
  file.write("text");
  file.finish();
  std::array<char, 8> bytes{};
  EXPECT_EQ(read(reader.number(), bytes.data(), bytes.size()), 4);
  EXPECT_STREQ(bytes.data(), "text");
  EXPECT_TRUE(fs::is_fifo(pipe));
  EXPECT_EQ(namesIn(folder.path()).size(), 1U);
}

TEST(OutputFile, OpenFileIsWrittenFromWhereItStands) {
  const support::TemporaryFolder folder;
  const fs::path target = folder.write("out", "before ");
  const carbon::Descriptor open(::open(target.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  OutputFile file("/dev/fd/" + std::to_string(open.number()));
  file.write("after");
  file.finish();
  EXPECT_EQ(bytesOf(target), "before after");
}

TEST(OutputFile, WhatDoesNotFitNamesTheFileAndLeavesNothing) {
  const support::TemporaryFolder folder;
  const fs::path target = folder.path() / "out.csv";
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit small = before;
  small.rlim_cur = 100'000;
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  std::string message;
  try {
    OutputFile file(target);
    for (int i = 0; i < 1000; ++i) file.write(std::string(1000, 'x'));
    file.finish();
  } catch (const HostError &error) {
    message = error.what();
  }
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(message, target.string() + ": File too large");
  EXPECT_THAT(namesIn(folder.path()), IsEmpty());
}

TEST(RemovePendingFiles, RemovesWhatIsUnfinishedAndNothingElse) {
  const support::TemporaryFolder folder;
  OutputFile(folder.path() / "done").finish();
  const OutputFile first(folder.path() / "first");
  const OutputFile second(folder.path() / "second");
  EXPECT_EQ(namesIn(folder.path()).size(), 3U);
  removeTemporaryPaths();
  EXPECT_THAT(namesIn(folder.path()), ElementsAre("done"));
}

TEST(WriteAll, SaysThatTheDiskIsFull) {
  std::FILE *const full = std::fopen("/dev/full", "w");
  ASSERT_NE(full, nullptr);
  try {
    writeAll(fileno(full), "text", "songs.csv");
    ADD_FAILURE() << "nothing was thrown";
  } catch (const HostError &error) {
    EXPECT_STREQ(error.what(), "songs.csv: No space left on device");
  }
  std::fclose(full);
}

}  // namespace
}  // namespace zemhost
