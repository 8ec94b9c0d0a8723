// What a host can see of a load besides its result: the object's data block, and the order of the steps.

#include <filesystem>
#include <fstream>
#include <string>

#include "samples/GeneratedLibrary.h"
#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

namespace fs = std::filesystem;

class LoadSteps : public PluginTest {
 protected:
  struct Block {
    int16_t err;
    void *db;
    void *dbf;
    uint32_t ecd;
  };
  Block &BlockOf(REALobject object) { return *static_cast<Block *>(Host().Data(object)); }

  static std::string Library(Variant variant = Variant::LittleEndian) {
    return samples::WriteLibrary(samples::OrdinaryLibrary({{.id = 1}}, {}), variant);
  }

  [[nodiscard]] bool DatabaseIsOpen() const {
    std::error_code error;
    for (const fs::directory_entry &file : fs::directory_iterator("/proc/self/fd")) {
      if (fs::read_symlink(file, error) == fs::canonical(DatabasePath())) return true;
    }
    return false;
  }

  // How many calls have read from files up to now.
  static long Reads() {
    std::ifstream io("/proc/self/io");
    for (std::string word; io >> word;) {
      long count = 0;
      if (word == "syscr:" && io >> count) return count;
    }
    return -1;
  }
};

TEST_F(LoadSteps, BlockHoldsErrorDatabaseItemAndEncodingInThisOrder) {
  Write(Library());
  const REALobject object = Host().New();
  Block &block = BlockOf(object);
  EXPECT_NE(block.db, nullptr);
  EXPECT_EQ(block.dbf, nullptr);
  EXPECT_EQ(block.ecd, kUtf8);
  block.ecd = 5;
  EXPECT_EQ(Host().Get<int32_t>(object, "ResultEncode"), 5);
  block.err = -7;
  EXPECT_EQ(Host().Get<int32_t>(object, "Error"), -7);
  const REALfolderItem item = Item(DatabasePath());
  EXPECT_EQ(Load(object, item), 1);
  EXPECT_EQ(block.dbf, item);
  EXPECT_EQ(block.err, 0);
}

TEST_F(LoadSteps, AnyAnswerButZeroMeansThatTheItemHasASpecification) {
  Write(Library());
  for (const int32_t answer : {1, 2, -1, 0x100, INT32_MIN}) {
    Host().specAnswer = answer;
    EXPECT_EQ(Load(Host().New(), Item(DatabasePath())), 1) << answer;
  }
  Host().specAnswer = 0;
  EXPECT_EQ(Load(Host().New(), Item(DatabasePath())), 0);
}

TEST_F(LoadSteps, FileIsReadInFewLargePieces) {
  const long before = Reads();
  if (before < 0) GTEST_SKIP() << "the system does not count reads";
  const long counting = Reads() - before;
  const std::string library = samples::GeneratedLibrary{.seed = 5, .songs = 4000}.Bytes();
  ASSERT_GT(library.size(), 1U << 20);
  Write(library);
  const REALobject object = Host().New();
  const REALfolderItem item = Item(DatabasePath());
  const long start = Reads();
  EXPECT_EQ(Load(object, item), 1);
  // The record at the end of a piece stays for the next one, which has so much less room.
  EXPECT_LE(Reads() - start - counting, static_cast<long>(library.size() / 45000));
}

TEST_F(LoadSteps, FileIsClosedBeforeThePathIsAskedFor) {
  if (!fs::exists("/proc/self/fd")) GTEST_SKIP() << "the system does not list open files";
  Write(Library());
  bool asked = false;
  Host().pathOfItems = [&]() -> std::optional<std::string> {
    EXPECT_FALSE(DatabaseIsOpen());
    asked = true;
    return "iPod:iPod_Control:iTunes:iTunesDB";
  };
  EXPECT_EQ(Load(Host().New(), Item(DatabasePath())), 1);
  EXPECT_TRUE(asked);
}

TEST_F(LoadSteps, NameOfADesktopLibraryIsTheVolumeUpToItsLastByte) {
  for (const size_t length : {31U, 32U, 33U, 62U, 63U}) {
    const std::string name(length, 'n');
    const std::string path = folder_.write(name, Library(Variant::BigEndian));
    const REALobject object = Host().New();
    EXPECT_EQ(Load(object, Item(path)), 1);
    EXPECT_EQ(Host().GetText(object, "VolumeName"), Text(name, kUntagged));
  }
}

}  // namespace
}  // namespace plugin_test
