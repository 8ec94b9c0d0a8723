#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/SongReader.h"
#include "samples/DatabaseWriter.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using samples::Variant;

class SongReaderTest : public testing::Test {
 protected:
  SongReader readerOf(std::vector<samples::Track> tracks, Variant variant = Variant::LittleEndian) {
    const auto path =
        folder_.write("db", samples::WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), {}), variant));
    file_ = carbon::Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    const FileAccount account = walkChunks(file_.number());
    return {file_.number(), account.bigEndian, account.tracksAt};
  }

  support::TemporaryFolder folder_;
  carbon::Descriptor file_;
};

samples::Track trackOf(std::vector<samples::DataObject> objects) {
  samples::Track track;
  track.objects = std::move(objects);
  return track;
}

TEST_F(SongReaderTest, PathKeepsEveryCharacter) {
  const SongReader reader =
      readerOf({trackOf({samples::TextObject(1, u"T"), samples::TextObject(2, u":F00:A夜\U0001F319.mp3")})});
  EXPECT_EQ(reader.path(0), ":F00:A夜\U0001F319.mp3");
}

TEST_F(SongReaderTest, LastPathOfSeveralIsTheSongs) {
  const SongReader reader =
      readerOf({trackOf({samples::TextObject(2, u":first"), samples::TextObject(2, u":last"),
                         samples::EightBitObject(2, ":bytes")})});
  EXPECT_EQ(reader.path(0), ":last");
}

TEST_F(SongReaderTest, SongWithoutAPathHasNone) {
  const SongReader reader = readerOf({trackOf({samples::TextObject(1, u"T")}), trackOf({})});
  EXPECT_EQ(reader.path(0), std::nullopt);
  EXPECT_EQ(reader.path(1), std::nullopt);
}

TEST_F(SongReaderTest, PathsOfADesktopLibraryAreNotInThatForm) {
  const SongReader reader = readerOf({trackOf({samples::TextObject(2, u"Title")})}, Variant::BigEndian);
  EXPECT_EQ(reader.path(0), std::nullopt);
}

// Whatever the small buffer holds at that moment.
TEST_F(SongReaderTest, PathsAreTheSameInAnyOrderAndOfAnyLength) {
  std::vector<samples::Track> tracks;
  std::vector<std::string> paths;
  for (size_t i = 0; i < 300; ++i) {
    std::u16string path(i * 37 % 1000, u'x');
    path.append(u":").append(std::u16string(1, static_cast<char16_t>(u'一' + i)));
    if (i == 150) path.insert(0, 100'000, u'y');
    tracks.push_back(trackOf({samples::TextObject(1, u"T"), samples::TextObject(2, path)}));
  }
  const SongReader reader = readerOf(tracks);
  for (size_t i = 0; i < 300; ++i) paths.push_back(reader.path(i).value_or(""));
  EXPECT_EQ(paths[150].size(), 100'000 + 150 * 37 % 1000 + 4);
  for (size_t i = 300; i-- > 0;) {
    EXPECT_EQ(reader.path(i), paths[i]);
    EXPECT_EQ(reader.texts(i).at(1).text, paths[i]);
  }
}

void putWord(std::string &bytes, uint64_t at, uint32_t value) {
  for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(value >> 8 * i);
}

// A song and its last object may state lengths that reach over the header of the next song, to that one's
// objects.
TEST_F(SongReaderTest, ObjectsOfTheNextSongAreNotThoseOfASongThatReachesOverIt) {
  std::string bytes = samples::WriteLibrary(
      samples::OrdinaryLibrary(
          {trackOf({samples::TextObject(1, u"One")}),
           trackOf({samples::TextObject(1, u"Two"), samples::TextObject(3, u"Its album")})},
          {}),
      Variant::LittleEndian);
  const carbon::Descriptor whole(open(folder_.write("whole", bytes).c_str(), O_RDONLY | O_CLOEXEC));
  const std::vector<uint64_t> songs = walkChunks(whole.number()).tracksAt;
  ASSERT_EQ(songs.size(), 2U);
  const size_t object = bytes.find("mhod", songs[0]);
  const size_t nextObject = bytes.find("mhod", songs[1]);
  putWord(bytes, songs[0] + 8, static_cast<uint32_t>(bytes.size() - songs[0]));
  putWord(bytes, songs[0] + 12, 3);
  putWord(bytes, object + 8, static_cast<uint32_t>(nextObject - object));
  const carbon::Descriptor reaching(open(folder_.write("reaching", bytes).c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_TRUE(SongReader(reaching.number(), false, songs).texts(0).empty());
  ASSERT_EQ(SongReader(reaching.number(), false, {songs[0]}).texts(0).size(), 3U);  // no song follows
}

}  // namespace
}  // namespace player
