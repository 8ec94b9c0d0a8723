#include <gtest/gtest.h>

#include "zemhost/output/ListFormat.h"
#include "zemhost/output/Xspf.h"

namespace zemhost {
namespace {

TEST(XspfEntry, DescribesTheSongAndNamesItsFile) {
  EXPECT_EQ(
      xspfEntry({221'400, "A & B", "<Title>", "A_B/1 \u00E9#.mp3", "Album"}),
      "    <track>\n      <location>A_B/1%20%C3%A9%23.mp3</location>\n      <title>&lt;Title&gt;</title>\n"
      "      <creator>A &amp; B</creator>\n      <album>Album</album>\n"
      "      <duration>221400</duration>\n    </track>\n");
  EXPECT_EQ(xspfEntry({0, "", "", "a"}), "    <track>\n      <location>a</location>\n    </track>\n");
}

TEST(XspfEntry, PathIsNeverReadAsAnAddressOfAnotherPlace) {
  const auto location = [](const char *path) {
    const std::string entry = xspfEntry({0, "", "", path});
    return entry.substr(28, entry.find('<', 28) - 28);
  };
  EXPECT_EQ(location("http://evil.example/x"), "http%3A//evil.example/x");
  EXPECT_EQ(location("//evil.example/x"), "/.//evil.example/x");
  EXPECT_EQ(location("/media/ann/a%20b"), "/media/ann/a%2520b");
  EXPECT_EQ(location("a?b#c\\d"), "a%3Fb%23c%5Cd");
}

TEST(XspfHeading, TextsThatXmlCannotHoldAreShown) {
  EXPECT_EQ(xspfHeading("a\x01\n\uFFFE]]>", "made here"),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- made here -->\n"
            "<playlist version=\"1\" xmlns=\"http://xspf.org/ns/0/\">\n"
            "  <title>a\u2401\u240A\uFFFD]]&gt;</title>\n  <trackList>\n");
}

TEST(ListFormat, PathsAreFoundInTheLinesOfAList) {
  for (const char *const name : {"m3u8", "xspf"}) {
    const ListFormat &format = *listFormatNamed(name);
    const std::string list =
        format.heading("Name", "mark") + format.entry({1, "A", "<location>", "p", "B"}) + format.end();
    size_t paths = 0;
    for (size_t at = 0, end = 0; (end = list.find('\n', at)) != std::string::npos; at = end + 1)
      paths += format.isPath(std::string_view(list).substr(at, end - at)) ? 1 : 0;
    EXPECT_EQ(paths, 1U) << name;
  }
  EXPECT_EQ(listFormatNamed("pls"), nullptr);
}

}  // namespace
}  // namespace zemhost
