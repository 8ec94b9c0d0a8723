// Paths become specifications and specifications become paths: FSMakeFSSpec, FSpMakeFSRef, FSRefMakePath,
// CarbonSpecFromPath and CarbonPathFromSpec.

#include <array>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "tests/platform/MountedVolume.h"

namespace {

namespace fs = std::filesystem;

constexpr FSSpec kUntouched = {77, 88, {3, 'o', 'l', 'd'}};

class FileSpecification : public MountedVolume {
 protected:
  // Demands the code, and that the specification was left alone.
  static void expectRefusal(std::string_view path, OSErr code) {
    FSSpec spec = kUntouched;
    EXPECT_EQ(makeSpec(path, spec), code) << path;
    EXPECT_TRUE(equal(spec, kUntouched)) << path;
  }
};

TEST_F(FileSpecification, FullPathNamesExistingFile) {
  folder_.write("iPod_Control/iTunes/iTunesDB");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:iPod_Control:iTunes:iTunesDB", spec), noErr);
  EXPECT_EQ(spec.vRefNum, volume_);
  EXPECT_EQ(nameOf(spec), "iTunesDB");
  EXPECT_EQ(posixPath(spec), at("iPod_Control/iTunes/iTunesDB"));
  EXPECT_EQ(macPath(spec), "iPod:iPod_Control:iTunes:iTunesDB");
}

TEST_F(FileSpecification, MissingFileIsFilledInAndFoundOnceItIsThere) {
  FSSpec spec = kUntouched;
  ASSERT_EQ(makeSpec("iPod:later", spec), fnfErr);
  EXPECT_EQ(spec.vRefNum, volume_);
  EXPECT_EQ(spec.parID, 2);
  EXPECT_EQ(nameOf(spec), "later");
  EXPECT_EQ(macPath(spec), "iPod:later");
  EXPECT_EQ(posixPath(spec), std::to_string(fnfErr));
  folder_.write("later");
  EXPECT_EQ(posixPath(spec), at("later"));
}

TEST_F(FileSpecification, MissingParentIsDirectoryNotFound) { expectRefusal("iPod:absent:file", dirNFErr); }

TEST_F(FileSpecification, FileOnTheWayIsDirectoryNotFound) {
  folder_.write("plain");
  expectRefusal("iPod:plain:file", dirNFErr);
}

TEST_F(FileSpecification, UnknownVolumeIsNoSuchVolume) {
  expectRefusal("no volume has this name:file", nsvErr);
  FSSpec spec = kUntouched;
  EXPECT_EQ(makeSpec(-30000, 2, "file", spec), nsvErr);
  EXPECT_EQ(makeSpec(7, 2, "file", spec), nsvErr);
  EXPECT_TRUE(equal(spec, kUntouched));
}

TEST_F(FileSpecification, NameOf63BytesIsGoodAnd64IsBad) {
  FSSpec spec;
  EXPECT_EQ(makeSpec("iPod:" + std::string(63, 'n'), spec), fnfErr);
  EXPECT_EQ(nameOf(spec), std::string(63, 'n'));
  expectRefusal("iPod:" + std::string(64, 'n'), bdNamErr);
  expectRefusal("iPod:" + std::string(64, 'n') + ":file", bdNamErr);
  expectRefusal(std::string(64, 'n') + ":file", bdNamErr);
}

TEST_F(FileSpecification, FileOnDiskWithNameOver63BytesHasNoSpecification) {
  const std::string name(64, 'n');
  FSSpec spec = kUntouched;
  EXPECT_EQ(CarbonSpecFromPath(folder_.write(name).c_str(), &spec), bdNamErr);
  EXPECT_TRUE(equal(spec, kUntouched));
}

TEST_F(FileSpecification, EmptyNamesAreBad) {
  expectRefusal("", bdNamErr);
  expectRefusal(":", bdNamErr);
  expectRefusal(":file", bdNamErr);
  FSSpec spec = kUntouched;
  EXPECT_EQ(makeSpec(volume_, 2, "", spec), bdNamErr);
  EXPECT_EQ(FSMakeFSSpec(volume_, 2, nullptr, &spec), bdNamErr);
}

TEST_F(FileSpecification, DotsAreNoWayUpOutOfTheVolume) {
  expectRefusal("iPod:..", bdNamErr);
  expectRefusal("iPod:.", bdNamErr);
  expectRefusal("iPod:..:..:etc:passwd", bdNamErr);
  const FSSpec spec = specification(volume_, 2, "..");
  EXPECT_EQ(posixPath(spec), std::to_string(bdNamErr));
}

TEST_F(FileSpecification, NamesWithNulAreBad) {
  folder_.write("a");
  expectRefusal(std::string_view("iPod:a\0b", 8), bdNamErr);
  EXPECT_EQ(posixPath(specification(volume_, 2, std::string_view("a\0b", 3))), std::to_string(bdNamErr));
}

TEST_F(FileSpecification, ColonInSpecificationNameIsNoWayIntoDirectories) {
  folder_.write("one/two");
  EXPECT_EQ(posixPath(specification(volume_, 2, "one:two")), std::to_string(bdNamErr));
  EXPECT_EQ(posixPath(specification(volume_, 2, "..:one")), std::to_string(bdNamErr));
}

TEST_F(FileSpecification, SlashInMacNameIsColonOnDisk) {
  folder_.write("AC:DC/Best:Of");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:AC/DC:Best/Of", spec), noErr);
  EXPECT_EQ(nameOf(spec), "Best/Of");
  EXPECT_EQ(posixPath(spec), at("AC:DC/Best:Of"));
  EXPECT_EQ(macPath(spec), "iPod:AC/DC:Best/Of");
  FSSpec same;
  ASSERT_EQ(CarbonSpecFromPath(at("AC:DC/Best:Of").c_str(), &same), noErr);
  EXPECT_TRUE(equal(same, spec));
}

TEST_F(FileSpecification, NamesMatchWithoutRegardToCaseAndGiveTheDisksSpelling) {
  folder_.write("iPod_Control/iTunes/iTunesDB");
  FSSpec spec;
  ASSERT_EQ(makeSpec("IPOD:ipod_control:ITUNES:itunesdb", spec), noErr);
  EXPECT_EQ(nameOf(spec), "iTunesDB");
  EXPECT_EQ(macPath(spec), "iPod:iPod_Control:iTunes:iTunesDB");
  EXPECT_EQ(posixPath(spec), at("iPod_Control/iTunes/iTunesDB"));
}

TEST_F(FileSpecification, CaseOfLettersBeyondAsciiIsDisregarded) {
  folder_.write("Études/Καλημέρα/Привет");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:éTUDES:ΚΑΛΗΜΈΡΑ:ПРИВЕТ", spec), noErr);
  EXPECT_EQ(posixPath(spec), at("Études/Καλημέρα/Привет"));
}

TEST_F(FileSpecification, ExactNameGoesBeforeOneOfOtherCase) {
  for (const char *name : {"SONG", "Song", "song"}) folder_.write(name);
  for (const char *name : {"SONG", "Song", "song"}) {
    FSSpec spec;
    ASSERT_EQ(makeSpec(std::string("iPod:") + name, spec), noErr);
    EXPECT_EQ(posixPath(spec), at(name));
  }
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:sONG", spec), noErr);
  EXPECT_EQ(nameOf(spec), "SONG") << "the first in byte order, whatever order the disk lists them in";
}

TEST_F(FileSpecification, ReferenceFindsFileThatAppearedInOtherCase) {
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:itunesdb", spec), fnfErr);
  folder_.write("iTunesDB");
  EXPECT_EQ(posixPath(spec), at("iTunesDB"));
}

TEST_F(FileSpecification, VolumeRootHasParentOneAndVolumesName) {
  for (const char *path : {"iPod", "iPod:", "ipod:"}) {
    FSSpec spec;
    ASSERT_EQ(makeSpec(path, spec), noErr);
    EXPECT_EQ(spec.parID, 1);
    EXPECT_EQ(nameOf(spec), "iPod");
    EXPECT_EQ(posixPath(spec), folder_.path());
    EXPECT_EQ(macPath(spec), "iPod:");
  }
  EXPECT_EQ(posixPath(specification(volume_, 1, "other")), std::to_string(nsvErr));
}

TEST_F(FileSpecification, RootsParentHoldsTheVolumeOnly) {
  folder_.write("file");
  FSSpec spec;
  ASSERT_EQ(makeSpec(volume_, 1, ":iPod:file", spec), noErr);
  EXPECT_EQ(posixPath(spec), at("file"));
  ASSERT_EQ(makeSpec(volume_, 1, "iPod", spec), noErr);
  EXPECT_EQ(posixPath(spec), folder_.path());
  EXPECT_EQ(makeSpec(volume_, 1, "file", spec), nsvErr);
  EXPECT_EQ(makeSpec(volume_, 1, ":", spec), nsvErr);
}

TEST_F(FileSpecification, BootVolumeIsTheWholeMachine) {
  folder_.write("file");
  std::string path = "System" + at("file");
  for (char &c : path)
    if (c == '/') c = ':';
  FSSpec spec;
  ASSERT_EQ(makeSpec(path, spec), noErr);
  EXPECT_EQ(posixPath(spec), at("file"));
  EXPECT_EQ(macPath(spec), path);
  ASSERT_EQ(makeSpec("System:", spec), noErr);
  EXPECT_EQ(posixPath(spec), "/");
}

TEST_F(FileSpecification, OneColonAtTheEndIsAllowed) {
  folder_.makeDirectory("Music");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:Music:", spec), noErr);
  EXPECT_EQ(macPath(spec), "iPod:Music");
  EXPECT_EQ(makeSpec("iPod:Absent:", spec), fnfErr);
}

TEST_F(FileSpecification, DoubleColonGoesUp) {
  folder_.write("one/two/file");
  folder_.write("one/file");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:one:two::file", spec), noErr);
  EXPECT_EQ(posixPath(spec), at("one/file"));
  ASSERT_EQ(makeSpec("iPod:one:two:::one:two", spec), noErr);
  EXPECT_EQ(posixPath(spec), at("one/two"));
  ASSERT_EQ(makeSpec("iPod:one:two::", spec), noErr);
  EXPECT_EQ(macPath(spec), "iPod:one");
  ASSERT_EQ(makeSpec("iPod:one::", spec), noErr);
  EXPECT_EQ(macPath(spec), "iPod:");
}

TEST_F(FileSpecification, DoubleColonGoesNoHigherThanTheRoot) {
  expectRefusal("iPod::", dirNFErr);
  expectRefusal("iPod::System", dirNFErr);
  FSSpec spec;
  EXPECT_EQ(makeSpec(volume_, 2, "::", spec), dirNFErr);
}

TEST_F(FileSpecification, DirectoryIdentifierIsAStartForNamesAndPartialPaths) {
  folder_.write("Music/F00/A.mp3");
  FSSpec song;
  ASSERT_EQ(makeSpec("iPod:Music:F00:A.mp3", song), noErr);
  for (const char *path : {"A.mp3", ":A.mp3", "a.MP3", "::F00:A.mp3"}) {
    FSSpec same;
    ASSERT_EQ(makeSpec(volume_, song.parID, path, same), noErr) << path;
    EXPECT_TRUE(equal(same, song)) << path;
  }
  FSSpec directory;
  ASSERT_EQ(makeSpec(volume_, song.parID, ":", directory), noErr);
  EXPECT_EQ(macPath(directory), "iPod:Music:F00");
  ASSERT_EQ(makeSpec(volume_, song.parID, "::", directory), noErr);
  EXPECT_EQ(macPath(directory), "iPod:Music");
}

TEST_F(FileSpecification, DirectoryZeroIsTheVolumesRoot) {
  folder_.write("file");
  FSSpec spec;
  ASSERT_EQ(makeSpec(volume_, 0, "file", spec), noErr);
  EXPECT_EQ(posixPath(spec), at("file"));
}

TEST_F(FileSpecification, VolumeZeroIsTheBootVolume) {
  FSSpec spec;
  ASSERT_EQ(makeSpec(0, 2, "etc", spec), noErr);
  EXPECT_EQ(posixPath(spec), "/etc");
  EXPECT_EQ(macPath(spec), "System:etc");
}

TEST_F(FileSpecification, FullPathDisregardsTheStart) {
  folder_.write("one/file");
  FSSpec spec;
  ASSERT_EQ(makeSpec(0, 2, "iPod:one:file", spec), noErr);
  EXPECT_EQ(posixPath(spec), at("one/file"));
  ASSERT_EQ(makeSpec(volume_, 2, "System:etc", spec), noErr);
  EXPECT_EQ(posixPath(spec), "/etc");
}

TEST_F(FileSpecification, SymbolicLinksAreFollowed) {
  folder_.write("real/file");
  fs::create_directory_symlink("real", at("link"));
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:link:file", spec), noErr);
  EXPECT_TRUE(fs::equivalent(posixPath(spec), at("real/file")));
}

TEST_F(FileSpecification, SymbolicLinkToNothingIsNoFile) {
  fs::create_symlink("nowhere", at("link"));
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:link", spec), fnfErr);
  EXPECT_EQ(nameOf(spec), "link");
  EXPECT_EQ(posixPath(spec), std::to_string(fnfErr));
}

TEST_F(FileSpecification, SymbolicLinksInACircleEnd) {
  fs::create_directory_symlink(".", at("loop"));
  fs::create_symlink("self", at("self"));
  folder_.write("file");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:loop:loop:loop:file", spec), noErr);
  EXPECT_TRUE(fs::equivalent(posixPath(spec), at("file")));
  std::string longest = "iPod:";
  while (longest.size() < 245) longest += "loop:";
  EXPECT_EQ(makeSpec(longest + "file", spec), noErr);
  expectRefusal("iPod:self:file", dirNFErr);
}

TEST_F(FileSpecification, UnterminatedFullLengthRecordsAreReadWithinTheirBounds) {
  FSSpec spec = specification(volume_, 2, std::string(63, 'x'));
  EXPECT_EQ(posixPath(spec), std::to_string(fnfErr));
  for (int length = 64; length < 256; ++length) {
    spec.name[0] = static_cast<uint8_t>(length);
    EXPECT_EQ(posixPath(spec), std::to_string(bdNamErr));
    EXPECT_EQ(macPath(spec), std::to_string(fnfErr));
  }
  spec.name[0] = 0;
  EXPECT_EQ(posixPath(spec), std::to_string(bdNamErr));
}

TEST_F(FileSpecification, ZeroFilledSpecificationNamesNothing) {
  const FSSpec spec = {};
  EXPECT_EQ(posixPath(spec), std::to_string(bdNamErr));
  EXPECT_EQ(macPath(spec), std::to_string(fnfErr));
  EXPECT_EQ(posixPath(specification(0, 2, "etc")), std::to_string(nsvErr));
}

TEST_F(FileSpecification, NullPointersAreParameterErrors) {
  FSSpec spec = {};
  FSRef ref;
  uint8_t byte = 0;
  char text = 0;
  EXPECT_EQ(FSMakeFSSpec(0, 0, pascal("iPod:").data(), nullptr), paramErr);
  EXPECT_EQ(FSpMakeFSRef(nullptr, &ref), paramErr);
  EXPECT_EQ(FSpMakeFSRef(&spec, nullptr), paramErr);
  EXPECT_EQ(FSRefMakePath(nullptr, &byte, 1), paramErr);
  EXPECT_EQ(FSRefMakePath(&ref, nullptr, 1), paramErr);
  EXPECT_EQ(CarbonSpecFromPath("/", nullptr), paramErr);
  EXPECT_EQ(CarbonSpecFromPath(nullptr, &spec), bdNamErr);
  EXPECT_EQ(CarbonPathFromSpec(nullptr, &text, 1), paramErr);
  EXPECT_EQ(CarbonPathFromSpec(&spec, nullptr, 1), paramErr);
}

TEST_F(FileSpecification, SpecificationMayBeFilledFromItsOwnName) {
  folder_.write("file");
  FSSpec spec = specification(volume_, 2, "FILE");
  ASSERT_EQ(FSMakeFSSpec(spec.vRefNum, spec.parID, spec.name, &spec), noErr);
  EXPECT_EQ(nameOf(spec), "file");
}

TEST(FileReferenceRecord, GarbageNamesNothing) {
  FSRef ref;
  std::array<uint8_t, 64> buffer;
  for (const int byte : {0x00, 0x41, 0xFF}) {
    std::memset(&ref, byte, sizeof ref);
    EXPECT_EQ(FSRefMakePath(&ref, buffer.data(), buffer.size()), fnfErr);
  }
}

TEST_F(FileSpecification, FailedReferenceNamesNothing) {
  folder_.write("file");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:file", spec), noErr);
  FSRef ref;
  ASSERT_EQ(FSpMakeFSRef(&spec, &ref), noErr);
  const FSSpec absent = specification(volume_, 2, "absent");
  EXPECT_EQ(FSpMakeFSRef(&absent, &ref), fnfErr);
  std::array<uint8_t, 64> buffer;
  EXPECT_EQ(FSRefMakePath(&ref, buffer.data(), buffer.size()), fnfErr);
}

TEST_F(FileSpecification, ReferenceToRemovedFileNamesNothing) {
  const fs::path file = folder_.write("file");
  FSSpec spec;
  FSRef ref;
  ASSERT_EQ(makeSpec("iPod:file", spec), noErr);
  ASSERT_EQ(FSpMakeFSRef(&spec, &ref), noErr);
  fs::remove(file);
  std::array<uint8_t, 4096> buffer;
  EXPECT_EQ(FSRefMakePath(&ref, buffer.data(), buffer.size()), fnfErr);
}

TEST_F(FileSpecification, PathAndTerminatorFitTheBufferToTheByte) {
  const std::string expected = folder_.write("file");
  FSSpec spec;
  FSRef ref;
  ASSERT_EQ(makeSpec("iPod:file", spec), noErr);
  ASSERT_EQ(FSpMakeFSRef(&spec, &ref), noErr);
  const auto length = static_cast<uint32_t>(expected.size());
  std::string buffer(expected.size() + 1, '#');
  auto *bytes = reinterpret_cast<uint8_t *>(buffer.data());
  EXPECT_EQ(FSRefMakePath(&ref, bytes, 0), pathTooLongErr);
  EXPECT_EQ(FSRefMakePath(&ref, bytes, length), pathTooLongErr);
  EXPECT_EQ(buffer, std::string(expected.size() + 1, '#')) << "left alone";
  EXPECT_EQ(FSRefMakePath(&ref, bytes, length + 1), noErr);
  EXPECT_EQ(buffer, expected + '\0');

  std::string mac(10, '#');
  EXPECT_EQ(CarbonPathFromSpec(&spec, mac.data(), 9), pathTooLongErr);
  EXPECT_EQ(mac, "##########");
  EXPECT_EQ(CarbonPathFromSpec(&spec, mac.data(), 10), noErr);
  EXPECT_EQ(mac, std::string("iPod:file") + '\0');
}

}  // namespace
