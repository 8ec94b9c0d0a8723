// What most tests of the plug-in start from: a host, and a player's volume on disk to load from.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "platform/carbon/CarbonFiles.h"
#include "samples/DatabaseWriter.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestHost.h"

namespace plugin_test {

using samples::Variant;
using support::HostText;
using support::kAscii;
using support::kShiftJIS;
using support::kUntagged;
using support::kUtf16;
using support::kUtf8;
using support::TestHost;
using support::Text;

inline const HostText kNullString{};

// At the end of a test nothing may be wrong and no folder item may be left; of strings only the path that
// each Load of a player's own file asks for stays with the host.
class PluginTest : public testing::Test {
 protected:
  explicit PluginTest(const TestHost::Setup &setup = {}) : host_(std::make_unique<TestHost>(setup)) {
    EXPECT_EQ(CarbonMountVolume("iPod", folder_.path().c_str()), noErr);
  }
  ~PluginTest() override {
    for (const REALfolderItem item : loaded_) host_->Release(item);
    EXPECT_THAT(host_->Faults(), testing::IsEmpty());
    EXPECT_THAT(host_->LiveTexts(), testing::ElementsAreArray(pathsLeft_));
    EXPECT_EQ(host_->LiveItems(), 0U);
  }

  // The path of the player's database on disk.
  [[nodiscard]] std::string DatabasePath() const {
    return folder_.path() / "iPod_Control" / "iTunes" / "iTunesDB";
  }

  // An item of the file, released when the test ends.
  REALfolderItem Item(const std::string &posixPath) {
    loaded_.push_back(host_->MakeItem(posixPath));
    return loaded_.back();
  }

  // Writes the database to the player.
  void Write(const std::string &bytes) { (void)folder_.write("iPod_Control/iTunes/iTunesDB", bytes); }

  // Loads an item into an object.
  int32_t Load(REALobject object, REALfolderItem item) {
    const size_t before = host_->LiveStrings();
    const auto result = host_->Call<int32_t>(object, "Load(f As FolderItem) As Boolean", item);
    if (host_->LiveStrings() == before + 1) pathsLeft_.push_back(LastPath());
    return result;
  }

  // A new object with the database loaded from the player.
  REALobject Loaded(const std::string &bytes) {
    Write(bytes);
    const REALobject object = host_->New();
    EXPECT_EQ(Load(object, Item(DatabasePath())), 1);
    return object;
  }

  // For hosts without the services that release what a method made on the way: ends what was left.
  void ReleaseStringsFrom(size_t count) {
    while (host_->LiveStrings() > count) host_->Release(host_->LastLiveString());
  }
  void ReleaseItemsThatAreLeft() {
    while (host_->LiveItems() > loaded_.size()) host_->Release(host_->LastLiveItem());
  }

  TestHost &Host() { return *host_; }

  support::TemporaryFolder folder_;

 private:
  // The path that the host was asked for last.
  [[nodiscard]] std::string LastPath() const {
    return host_->pathOfItems ? host_->pathOfItems().value_or("") : "iPod:iPod_Control:iTunes:iTunesDB";
  }

  std::unique_ptr<TestHost> host_;
  std::vector<REALfolderItem> loaded_;
  std::vector<std::string> pathsLeft_;
};

class PluginTestOfEachVariant : public PluginTest, public testing::WithParamInterface<Variant> {
 protected:
  static bool Little() { return GetParam() == Variant::LittleEndian; }
  static std::string Bytes(std::vector<samples::Track> tracks,
                           std::vector<samples::Playlist> playlists = {}) {
    return samples::WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), std::move(playlists)),
                                 GetParam());
  }
};

inline auto BothVariants() { return testing::Values(Variant::LittleEndian, Variant::BigEndian); }

inline std::string VariantName(const testing::TestParamInfo<Variant> &info) {
  return info.param == Variant::LittleEndian ? "LittleEndian" : "BigEndian";
}

}  // namespace plugin_test
