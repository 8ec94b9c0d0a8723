// Compressed databases through the built program: the same answers as from the plain file, and clear words
// for streams that are damaged.

#include <array>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>
#include <zlib.h>

#include "samples/GeneratedLibrary.h"
#include "samples/SampleLibrary.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

std::string deflated(const std::string &bytes, int level) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string out(size, '\0');
  if (compress2(reinterpret_cast<Bytef *>(out.data()), &size, reinterpret_cast<const Bytef *>(bytes.data()),
                static_cast<uLong>(bytes.size()), level) != Z_OK)
    throw std::runtime_error("cannot compress");
  out.resize(size);
  return out;
}

size_t headerLength(const std::string &database) {
  const samples::Variant variant =
      database.starts_with("hdfm") ? samples::Variant::BigEndian : samples::Variant::LittleEndian;
  return samples::UsualHeaderLength(samples::Kind::File, variant);
}

// The header with the total length of the compressed file, and the body as a stream.
std::string compressedForm(const std::string &database, int level = Z_DEFAULT_COMPRESSION) {
  const size_t header = headerLength(database);
  const bool bigEndian = database.starts_with("hdfm");
  samples::ChunkWriter out(bigEndian ? samples::Variant::BigEndian : samples::Variant::LittleEndian);
  out.AppendBytes(database.substr(0, header));
  out.AppendBytes(deflated(database.substr(header), level));
  out.Finish(0);
  return out.TakeBytes();
}

class CompressedDatabase : public testing::Test {
 protected:
  // Temporary files go to a directory of the test's own, in which nothing may stay.
  Outcome run(const std::vector<std::string> &arguments) const {
    RunOptions options;
    options.environment = {{"TMPDIR", temporary_.path().string()}};
    Outcome outcome = runZemhost(arguments, options);
    EXPECT_TRUE(fs::is_empty(temporary_.path())) << "a temporary file stayed";
    return outcome;
  }

  void expectRefusal(const std::string &bytes, const std::string &reason) const {
    const fs::path file = folder_.write("compressed", bytes);
    const Outcome outcome = run({"call", file, "CountSongs"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(linesOf(outcome.err).size(), 1U) << outcome.err;
    EXPECT_THAT(outcome.err, StartsWith("zemhost: " + file.string() + ": "));
    EXPECT_THAT(outcome.err, HasSubstr(reason));
  }

  support::TemporaryFolder folder_;
  support::TemporaryFolder temporary_;
  const std::string database_ = samples::SamplePlayerDatabase();
};

TEST_F(CompressedDatabase, OfAPlayerAnswersAsThePlainOne) {
  const fs::path player = folder_.path() / "player";  // the same name, which is the volume's
  fs::copy(kPlayer, player, fs::copy_options::recursive);
  fs::resize_file(player / "iPod_Control/iTunes/iTunesDB", 0);
  folder_.write("player/iPod_Control/iTunes/iTunesCDB", compressedForm(database_));
  const std::vector<std::vector<std::string>> commands = {
      {"songs"},
      {"playlists"},
      {"playlist", "Night Drives"},
      {"call", "VolumeName", "GetAbsolutePath(0)", "GetFolderItem(0)", "GetFolderItem(24)"}};
  for (const std::vector<std::string> &command : commands) {
    const auto with = [&](const fs::path &path) {
      std::vector<std::string> arguments = command;
      arguments.insert(arguments.begin() + 1, path.string());
      return arguments;
    };
    const Outcome outcome = run(with(player));
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, runZemhost(with(kPlayer)).out) << command.front();
  }
}

TEST_F(CompressedDatabase, OfAPlayerIsCheckedAndRescuedAsThePlainOne) {
  const fs::path player = folder_.path() / "player";
  fs::copy(kPlayer, player, fs::copy_options::recursive);
  fs::remove(player / "iPod_Control/iTunes/iTunesDB");
  folder_.write("player/iPod_Control/iTunes/iTunesCDB", compressedForm(database_) + "left");
  const Outcome check = run({"check", player});
  EXPECT_EQ(check.status, 3);
  EXPECT_THAT(check.out, HasSubstr("iTunesCDB (compressed)\n"));
  EXPECT_THAT(check.out,
              HasSubstr("\nContent   " + std::to_string(database_.size()) + " bytes, all accounted for\n"));
  EXPECT_THAT(check.out, HasSubstr("\n2 findings\n- 4 bytes stand after the compressed stream\n- song 24 "));
  const Outcome rescue = run({"rescue", player, folder_.path() / "music", "--playlist", "Podcasts"});
  EXPECT_EQ(rescue.status, 0);
  EXPECT_THAT(rescue.out, HasSubstr("\n2 songs copied, 32.0 kB\n"));
}

TEST_F(CompressedDatabase, FoldersInCapitalsAreThePlayersToo) {
  const fs::path player = folder_.path() / "player";
  fs::create_directories(player / "IPOD_CONTROL");
  fs::copy(kPlayer / "iPod_Control/Music", player / "IPOD_CONTROL/Music", fs::copy_options::recursive);
  folder_.write("player/IPOD_CONTROL/ITUNES/ITUNESCDB", compressedForm(database_));
  const Outcome outcome = run({"call", player, "VolumeName", "GetFolderItem(0)"});
  EXPECT_THAT(outcome.out, StartsWith("\"player\""));
  EXPECT_THAT(outcome.out, testing::Not(HasSubstr("no such file")));
}

TEST_F(CompressedDatabase, IsRecognisedByItsContentInEveryVariantAndAtEveryLevel) {
  for (const std::string &plain : {database_, samples::SampleDesktopLibrary()}) {
    const std::string expected = runZemhost({"songs", folder_.write("plain", plain)}).out;
    for (const int level : {0, 1, 6, 9}) {
      const Outcome outcome = run({"songs", folder_.write("any name", compressedForm(plain, level))});
      EXPECT_EQ(outcome.err, "") << level;
      EXPECT_EQ(outcome.out, expected) << level;
    }
  }
}

TEST_F(CompressedDatabase, TheLargerOfTheTwoFilesOfAPlayerIsRead) {
  const std::string stub = samples::WriteLibrary({}, samples::Variant::LittleEndian);
  folder_.write("iPod_Control/iTunes/iTunesDB", stub);
  folder_.write("iPod_Control/iTunes/iTunesCDB", compressedForm(database_));
  EXPECT_THAT(run({"songs", folder_.path()}).out, HasSubstr("\n29 songs"));
  folder_.write("iPod_Control/iTunes/iTunesDB", database_);
  folder_.write("iPod_Control/iTunes/iTunesCDB", compressedForm(stub));
  EXPECT_THAT(run({"songs", folder_.path()}).out, HasSubstr("\n29 songs"));
}

TEST_F(CompressedDatabase, OfManySongsIsInflatedWhole) {
  samples::GeneratedLibrary library;
  library.songs = 5000;
  library.playlists = 3;
  library.entries = 200;
  const std::string plain = library.Bytes();
  EXPECT_EQ(run({"songs", folder_.write("compressed", compressedForm(plain))}).out,
            runZemhost({"songs", folder_.write("plain", plain)}).out);
}

TEST_F(CompressedDatabase, EveryTruncatedStreamIsSaidToBe) {
  const std::string whole = compressedForm(database_);
  for (size_t size = headerLength(database_) + 2; size < whole.size(); size += 1 + whole.size() / 25) {
    expectRefusal(whole.substr(0, size), "the compressed database is truncated");
  }
  expectRefusal(whole.substr(0, whole.size() - 1), "the compressed database is truncated");
}

TEST_F(CompressedDatabase, DamagedStreamIsSaidToBe) {
  const std::string whole = compressedForm(database_);
  for (const size_t at : {headerLength(database_) + 40, whole.size() / 2, whole.size() - 1}) {
    std::string damaged = whole;
    for (size_t i = at; i < damaged.size() && i < at + 40; ++i) damaged[i] = static_cast<char>(~damaged[i]);
    expectRefusal(damaged, "the compressed database is damaged near byte ");
  }
}

TEST_F(CompressedDatabase, SongsBeforeTheDamageOfAStreamAreSalvaged) {
  const std::string whole = compressedForm(database_, 0);
  const size_t songs = whole.find("mhit");
  const size_t lists = whole.find("mhlp");
  for (const std::string &damaged :
       {whole.substr(0, lists), std::string(whole).replace(lists, 4000, 4000, '\0'),
        whole.substr(0, (songs + lists) / 2)}) {
    const fs::path file = folder_.write("compressed", damaged);
    const Outcome outcome = run({"songs", file});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(": the file is damaged: "));
    EXPECT_THAT(outcome.err, HasSubstr(" were found by salvage"));
    const Outcome check = run({"check", file});
    EXPECT_EQ(check.status, 3);
    EXPECT_THAT(check.out, HasSubstr("\n- the compressed database is "));
  }
}

TEST_F(CompressedDatabase, StreamOfSomethingElseIsSaidToBe) {
  const std::string header = database_.substr(0, headerLength(database_));
  expectRefusal(header + deflated(std::string(5000, '\0'), 6), "its compressed content: the file is damaged");
  expectRefusal(header + deflated(deflated(database_, 6), 6), "a compressed database again");
}

TEST_F(CompressedDatabase, StreamThatInflatesBeyondAllMeasureIsRefused) {
  const std::string header = database_.substr(0, headerLength(database_));
  expectRefusal(header + deflated(std::string(80U << 20, '\0'), 1),
                "inflates to more than 100 times its size");
}

TEST_F(CompressedDatabase, TemporaryDirectoryThatIsNotThereIsNamed) {
  RunOptions options;
  options.environment = {{"TMPDIR", (folder_.path() / "none").string()}};
  const Outcome outcome =
      runZemhost({"songs", folder_.write("compressed", compressedForm(database_))}, options);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "zemhost: " + (folder_.path() / "none").string() +
                             ": no temporary directory can be made here: No such file or directory\n");
}

}  // namespace
}  // namespace zemhost
