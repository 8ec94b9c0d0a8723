// A whole database file: the first byte chooses how the class is used, the rest is the file. The loader by
// itself is held against the plain model, then every query and every registered method is asked, with indexes
// in and out of range.

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

#include "db/CiTunesDB.h"
#include "fuzz/MethodCalls.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "platform/carbon/CarbonFiles.h"
#include "sdk/PluginMain.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/db/Questions.h"
#include "tests/model/Loader.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestHost.h"
#include "unicode/ZemUnicode.h"

namespace {

using fuzz::MethodCalls;
using fuzz::Require;
using support::TestHost;

// What the bits of the first byte choose.
enum Option : uint8_t {
  kUseSJIS = 1,
  kZeroBase = 2,
  kOtherEncode = 4,
  kOwnFile = 8,  // the player's own database, or one in another folder
  kLoadTwice = 16,
  kBuildFails = 32,
  kConvertFails = 64,
  kNoSpecification = 128
};

void ConvertTexts(const CiTunesDB &database) {
  constexpr size_t kSome = 6;
  for (size_t i = 0; i < std::min(kSome, database.songs.size()); ++i) {
    for (const songInfo &other : database.songs[i].unknown) {
      (void)ConvSJIS(other.obj, static_cast<int32_t>(other.enc));
    }
    (void)ConvSJIS(database.songs[i].title.obj, static_cast<int32_t>(database.songs[i].title.enc));
  }
}

void AskDatabase(CiTunesDB &database, std::string_view text) {
  const std::string fault = db_test::AskEverything(database);
  Require(fault.empty(), fault);
  ConvertTexts(database);
  db_test::ChangeEverything(database, text);
  const std::string late = db_test::AskEverything(database);
  Require(late.empty(), late);
}

void TryLoader(uint8_t options, const std::string &file) {
  if (file.empty()) return;  // no stream can stand over nothing
  const db_test::MemoryFile stream(file);
  CiTunesDB database;
  model::Database expected;
  const bool isDatabase = model::Load(file, expected);
  Require((database.LoadiTunesDB(stream.Stream()) == 1) == isDatabase,
          "the model differs on what a database is");
  const model::Database read = db_test::Plain(database);
  if (read != expected) {
    Require(false, "read:\n" + db_test::Describe(read) + "the model reads:\n" + db_test::Describe(expected));
  }
  if ((options & kLoadTwice) != 0) (void)database.LoadiTunesDB(stream.Stream());
  AskDatabase(database, std::string_view(file).substr(0, 40));
}

// The volume that the plug-in reads from, for the whole run.
class Volume {
 public:
  Volume() {
    folder_.makeDirectory("iPod_Control/iTunes");
    folder_.makeDirectory("Databases");
    folder_.write("iPod_Control/Music/F00/A.mp3");
    Require(CarbonMountVolume("iPod", folder_.path().c_str()) == noErr, "no volume");
  }

  // Puts the file where the option says; its specification.
  FSSpec Put(uint8_t options, const std::string &file) {
    const std::filesystem::path path = folder_.path() / ((options & kOwnFile) != 0 ? kOwn : kOther);
    std::ofstream out(path, std::ios::binary);
    out << file;
    Require(static_cast<bool>(out.flush()), "cannot write " + path.string());
    FSSpec &spec = specs_[(options & kOwnFile) != 0 ? 1 : 0];
    if (spec.name[0] == 0) Require(CarbonSpecFromPath(path.c_str(), &spec) == noErr, "no such file");
    return spec;
  }

 private:
  static constexpr const char *kOwn = "iPod_Control/iTunes/iTunesDB";
  static constexpr const char *kOther = "Databases/library.itdb";

  support::TemporaryFolder folder_;
  std::array<FSSpec, 2> specs_{};
};

// The three numbers of a call are song or playlist, position and what is asked for, as the method has it.
std::vector<std::array<int32_t, 3>> Indexes(std::string_view file) {
  const auto byte = [&](size_t i) {
    return i < file.size() ? static_cast<int32_t>(static_cast<uint8_t>(file[file.size() - 1 - i])) : 0;
  };
  const int32_t odd = byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
  return {{0, 0, 7},
          {1, 1, 1},
          {byte(4) % 4, byte(5) % 16 - 1, byte(6) % 16},
          {odd, -1, INT_MIN},
          {-1, odd, INT_MAX}};
}

void AskObject(TestHost &host, const MethodCalls &calls, REALobject object, std::string_view file) {
  REALstring text = host.MakeString(file.substr(0, std::min<size_t>(file.size(), 60)),
                                    file.size() % 2 == 0 ? support::kUtf8 : support::kUtf16);
  REALstring path = host.MakeString(":iPod_Control:Music:F00:A.mp3");
  for (const std::array<int32_t, 3> &numbers : Indexes(file)) {
    for (size_t i = 0; i < calls.Count(); ++i) {
      calls.Call(host, i, object, {.numbers = numbers, .text = numbers[0] == 1 ? path : text});
    }
  }
  for (const char *property : {"Error", "LibType", "UseSJIS", "ResultEncode", "ZerobasePlayerlist"}) {
    (void)host.Get<int32_t>(object, property);
  }
  (void)host.GetText(object, "VolumeName");
  host.Release(text);
  host.Release(path);
}

void TryPlugin(uint8_t options, const std::string &file) {
  static Volume volume;
  TestHost host({.entryPoint = &REALPluginMain});
  static const MethodCalls calls(host);
  REALobject object = host.New();
  host.Set<int32_t>(object, "UseSJIS", options & kUseSJIS);
  host.Set<int32_t>(object, "ZerobasePlayerlist", options & kZeroBase);
  if ((options & kOtherEncode) != 0) {
    host.Set<int32_t>(object, "ResultEncode", static_cast<int32_t>(support::kShiftJIS));
  }
  REALfolderItem item = host.MakeItem(volume.Put(options, file));
  host.specAnswer = (options & kNoSpecification) != 0 ? 0 : 1;
  const size_t strings = host.LiveStrings();
  (void)calls.Load(object, item);
  const size_t left = host.LiveStrings();
  Require(left <= strings + 1, "a load keeps more than its path");
  host.buildFails = (options & kBuildFails) != 0;
  host.convertFails = (options & kConvertFails) != 0;
  AskObject(host, calls, object, file);
  host.Release(item);
  host.Delete(object);
  Require(host.Faults().empty(), host.Faults().empty() ? "" : host.Faults().front());
  Require(host.LiveItems() == 0, "a folder item is left");
  Require(host.LiveStrings() == left, "a string is left");
}

}  // namespace

FUZZ_TARGET(database) {
  if (size == 0) return;
  const std::string file(reinterpret_cast<const char *>(data) + 1, size - 1);
  TryLoader(data[0], file);
  TryPlugin(data[0], file);
}
