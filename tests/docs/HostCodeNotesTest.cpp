// What docs/host-code-notes.md says that its transcripts cannot show.

#include <gtest/gtest.h>
#include <stdexcept>
#include <string_view>

#include "host/Host.h"
#include "tests/support/Folders.h"

namespace docs_test {
namespace {

using zemhost::HostString;

class HostCodeNotes : public testing::Test {
 protected:
  HostCodeNotes() : library_(host_.make("ZemiTunesDB")) {
    if (!library_.call("Load", {file_}).boolean())
      throw std::runtime_error("the sample player cannot be loaded");
  }

  const zemhost::FolderItem file_ = zemhost::FolderItem::fromPath(support::SamplesFolder() / "player" /
                                                                  "iPod_Control" / "iTunes" / "iTunesDB");
  const zemhost::Host host_ = zemhost::Host::load({support::PluginFile(), 5.9, {}});
  const zemhost::Object library_;
};

TEST_F(HostCodeNotes, SetTextsComeBackFromUtf8AndShiftJisAlone) {
  const auto comesBack = [&](std::string_view bytes, uint32_t encoding) {
    const HostString text = HostString::fromBytes(bytes, encoding);
    library_.call("SetTitle", {0, text});
    return library_.call("GetTitle", {0}).text() == text.text();
  };
  constexpr uint32_t kMacRoman = 0;
  EXPECT_TRUE(comesBack("Caf\xC3\xA9", 0x08000100));
  EXPECT_TRUE(comesBack("\x82\xA0", 0x0A01));
  EXPECT_FALSE(comesBack("Cafe", 0x0600));
  EXPECT_FALSE(comesBack("Caf\x8E", kMacRoman));
}

TEST_F(HostCodeNotes, SetTextDiffersFromTheSameTextOfTheFile) {
  ASSERT_TRUE(library_.call("CompareArtist", {0, 1}).boolean());
  library_.call("SetArtist", {1, library_.call("GetArtist", {0})});
  EXPECT_EQ(library_.call("GetArtist", {1}).text(), library_.call("GetArtist", {0}).text());
  EXPECT_FALSE(library_.call("CompareArtist", {0, 1}).boolean());
}

}  // namespace
}  // namespace docs_test
