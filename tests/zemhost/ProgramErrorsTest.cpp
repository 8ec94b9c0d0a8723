// What the built program says, and how it ends, when something is wrong.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "samples/GeneratedLibrary.h"
#include "samples/SampleLibrary.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

const std::vector<std::string> kReadingCommands = {"info", "songs", "playlists", "playlist", "call", "check"};

std::vector<std::string> commandLine(const std::string &command, const fs::path &path) {
  if (command == "playlist") return {command, path, "0"};
  if (command == "call") return {command, path, "CountSongs"};
  return {command, path};
}

// Every command that reads a database refuses the path with this one line.
void expectRefusal(const fs::path &path, const std::string &file, const std::string &reason) {
  const std::string message = "zemhost: " + file + ": " + reason + "\n";
  for (const std::string &command : kReadingCommands) {
    const Outcome outcome = runZemhost(commandLine(command, path));
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_EQ(outcome.out, "") << command;
    EXPECT_EQ(outcome.err, message) << command;
  }
}

class BadInput : public testing::Test {
 protected:
  void expectFileRefused(const std::string &bytes, const std::string &reason) const {
    const fs::path file = folder_.write("some file", bytes);
    expectRefusal(file, file, reason);
  }

  support::TemporaryFolder folder_;
};

TEST_F(BadInput, MissingFile) {
  const fs::path file = folder_.path() / "none";
  expectRefusal(file, file, "No such file or directory");
}

TEST_F(BadInput, DirectoryWithoutADatabase) {
  expectRefusal(folder_.path(), folder_.path(), "no database here: the directory has no iPod_Control folder");
}

TEST_F(BadInput, EmptyFile) { expectFileRefused("", "the file is empty"); }

TEST_F(BadInput, ForeignFile) {
  expectFileRefused("ID3 something else entirely", "not an iTunesDB database");
}

TEST_F(BadInput, TruncatedFileWithoutAWholeSong) {
  const std::string whole = samples::SamplePlayerDatabase();
  const size_t size = whole.find("mhit") + 0x248;
  expectFileRefused(whole.substr(0, size), "the file is truncated: it should hold " +
                                               std::to_string(whole.size()) + " bytes and holds " +
                                               std::to_string(size));
}

TEST_F(BadInput, EncryptedFile) {
  std::string bytes = samples::SampleDesktopLibrary();
  uint32_t state = 1;
  for (size_t i = samples::UsualHeaderLength(samples::Kind::File, samples::Variant::BigEndian);
       i < bytes.size(); ++i) {
    state = state * 1664525 + 1013904223;
    bytes[i] = static_cast<char>(bytes[i] ^ static_cast<char>(state >> 24));
  }
  expectFileRefused(bytes, "the library is encrypted and cannot be read");
}

TEST_F(BadInput, NameThatTheFileManagerCannotHold) {
  const fs::path file = folder_.write(std::string(64, 'n'), samples::SamplePlayerDatabase());
  expectRefusal(file, file, "the file's name is longer than the 63 bytes that can be read");
}

TEST_F(BadInput, FileWithoutPermission) {
  const fs::path file = folder_.write("file", samples::SamplePlayerDatabase());
  fs::permissions(file, fs::perms::none);
  RunOptions options;
  options.asOwner = true;
  const Outcome outcome = runZemhost({"songs", file}, options);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "zemhost: " + file.string() + ": Permission denied\n");
}

TEST_F(BadInput, RelativePathIsNamedAsItWasWritten) {
  const Outcome outcome = runZemhost({"songs", "no/such file"});
  EXPECT_EQ(outcome.err, "zemhost: no/such file: No such file or directory\n");
}

TEST_F(BadInput, EveryBeginningOfADatabaseIsRefusedByTheClass) {
  const std::string whole = samples::SampleDesktopLibrary();
  for (size_t size = 0; size < whole.size(); size += 1 + whole.size() / 40) {
    const fs::path file = folder_.write("cut", whole.substr(0, size));
    const Outcome refused = runZemhost({"call", file, "CountSongs"});
    EXPECT_EQ(refused.status, 1) << size;
    EXPECT_EQ(refused.out, "") << size;
    EXPECT_EQ(linesOf(refused.err).size(), 1U) << refused.err;
    const Outcome songs = runZemhost({"songs", file});
    EXPECT_EQ(linesOf(songs.err).size(), 1U) << songs.err;
    EXPECT_EQ(songs.status == 0, songs.err.find(" were found by salvage") != std::string::npos) << size;
    EXPECT_EQ(songs.status == 0, !songs.out.empty()) << size;
  }
}

TEST_F(BadInput, DamagedBytesNeverEndTheProgramBadly) {
  const std::string whole = samples::SamplePlayerDatabase();
  uint32_t state = 7;
  for (int round = 0; round < 60; ++round) {
    std::string bytes = whole;
    for (int i = 0; i < 200; ++i) {
      state = state * 1664525 + 1013904223;
      bytes[(state >> 8) % bytes.size()] = static_cast<char>(state);
    }
    const fs::path file = folder_.write("damaged", bytes);
    for (const char *command : {"songs", "playlists"}) {
      const Outcome outcome = runZemhost({command, file});
      EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << outcome.status;
      if (outcome.status == 0) {
        EXPECT_THAT(outcome.err, testing::AnyOf("", HasSubstr("run: zemhost check "))) << round;
      } else {
        EXPECT_EQ(linesOf(outcome.err).size(), 1U) << outcome.err;
      }
    }
  }
}

TEST(WrongUsage, EndsWithStatus2AndAHint) {
  const std::vector<std::vector<std::string>> wrong = {{},
                                                       {"frobnicate"},
                                                       {"songs"},
                                                       {"songs", "a", "b"},
                                                       {"songs", "--frobnicate", "a"},
                                                       {"playlist", kPlayer},
                                                       {"call", kPlayer},
                                                       {"class", "a"},
                                                       {"--frobnicate"}};
  for (const auto &arguments : wrong) {
    const Outcome outcome = runZemhost(arguments);
    const std::string shown = testing::PrintToString(arguments);
    EXPECT_EQ(outcome.status, 2) << shown;
    EXPECT_EQ(outcome.out, "") << shown;
    EXPECT_THAT(outcome.err, StartsWith("zemhost: ")) << shown;
    EXPECT_THAT(outcome.err, HasSubstr("zemhost --help")) << shown;
  }
}

TEST(WrongUsage, UnknownCommandIsNamed) {
  EXPECT_THAT(runZemhost({"frobnicate"}).err, HasSubstr("frobnicate"));
}

TEST(Help, ListsTheCommandsAndTheirArguments) {
  const Outcome all = runZemhost({"--help"});
  EXPECT_EQ(all.status, 0);
  EXPECT_EQ(all.err, "");
  for (const std::string &command : kReadingCommands) {
    EXPECT_THAT(all.out, HasSubstr("  " + command + " "));
    const Outcome one = runZemhost({command, "--help"});
    EXPECT_EQ(one.status, 0);
    EXPECT_THAT(one.out, HasSubstr("PATH"));
    EXPECT_EQ(one.err, "");
  }
}

TEST(Help, NoLineIsWiderThan80ColumnsAndNoWordIsCut) {
  std::vector<std::string> commands;
  const std::string all = runZemhost({"--help"}).out;
  for (const std::string &line : linesOf(all.substr(all.find("Subcommands:\n"))))
    if (line.starts_with("  ") && line[2] != ' ') commands.push_back(line.substr(2, line.find(' ', 2) - 2));
  ASSERT_GE(commands.size(), 14U);
  std::string help = all;
  for (const std::string &command : commands) help += runZemhost({command, "--help"}).out;
  for (const std::string &line : linesOf(help)) EXPECT_LE(displayWidth(line), 80U) << line;
  // Put together again, a description that takes several lines has its words.
  std::string joined;
  for (const std::string &line : linesOf(help))
    joined += line.substr(std::min(line.find_first_not_of(' '), line.size())) + " ";
  EXPECT_THAT(
      joined,
      HasSubstr("A mounted player, its iPod_Control folder, or a database file; of a player's iTunesDB "
                "and iTunesCDB (compressed) the larger one is read"));
  EXPECT_THAT(
      joined,
      HasSubstr("no other file is ever replaced, so after an interruption the same command continues."));
}

TEST(Help, VersionIsShown) {
  const Outcome outcome = runZemhost({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "zemhost " ZEM_VERSION "\n");
}

TEST(Output, FullDiskIsAnErrorWithItsReason) {
  RunOptions full;
  full.output = "/dev/full";
  const std::vector<std::vector<std::string>> runs = {{"songs", kPlayer}, {"class"}};
  for (const auto &arguments : runs) {
    const Outcome outcome = runZemhost(arguments, full);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "zemhost: standard output: No space left on device\n");
  }
}

TEST(Output, ReaderThatGoesAwayEndsTheProgramQuietly) {
  const support::TemporaryFolder folder;
  samples::GeneratedLibrary library;
  library.songs = 5000;
  RunOptions head;
  head.readAtMost = 1;
  const Outcome outcome = runZemhost({"songs", folder.write("db", library.Bytes())}, head);
  EXPECT_EQ(outcome.status, 128 + SIGPIPE);
  EXPECT_EQ(outcome.err, "");
}

}  // namespace
}  // namespace zemhost
