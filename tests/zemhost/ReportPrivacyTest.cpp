#include <gtest/gtest.h>

#include "zemhost/report/Privacy.h"

namespace zemhost {
namespace {

TEST(ReportPrivacy, MailAddressesAreLeftOutOfAnyText) {
  for (const auto &[text, kept] : std::initializer_list<std::pair<const char *, const char *>>{
           {"ann@example.com", "(address left out)"},
           {"Bought by <ann.b+c@mail.example.co.uk>, 2004", "Bought by <(address left out)>, 2004"},
           {"a@b.c d@e.f", "(address left out) (address left out)"},
           {"jörg@exämple.de!", "(address left out)!"},
           {"mailto:ann@example.com?x", "mailto:(address left out)?x"},
           {"夏 ann@example.com", "夏 (address left out)"}})
    EXPECT_EQ(withoutMailAddresses(text), kept);
}

TEST(ReportPrivacy, OtherTextsStay) {
  for (const char *text :
       {"", "@", "a@b", "@home", "R@dio", "5 @ 3.50", "a@.b", "a@b.", "Live @ Paris. Two", "x@y..z"})
    EXPECT_EQ(withoutMailAddresses(text), text);
}

TEST(ReportPrivacy, NothingIsLeftOutUnasked) {
  EXPECT_FALSE(Privacy().isAsked());
  EXPECT_EQ(Privacy().text("ann@example.com"), "ann@example.com");
  EXPECT_EQ(Privacy().line("/media/ann"), "/media/ann");
}

class ReportPrivacyOf : public testing::Test {
 protected:
  ReportPrivacyOf() {
    device_.serialNumber = "XX1234567";
    device_.guid = "0x000A27001234ABCD";
    location_.volumeRoot = "/media/ann/IPOD";
    location_.file = "/media/ann/IPOD/iPod_Control/iTunes/iTunesDB";
  }
  Privacy privacy() const { return {location_, device_, "Ann's iPod"}; }

  player::Device device_;
  player::DatabaseLocation location_;
};

TEST_F(ReportPrivacyOf, NumbersOfThePlayerAreLeftOutOfTexts) {
  EXPECT_EQ(privacy().text("is XX1234567, XX1234567"), "is (left out), (left out)");
  EXPECT_EQ(privacy().text("000A27001234ABCD"), "(left out)");
  EXPECT_EQ(privacy().text("Ann's iPod"), "Ann's iPod");  // a title may be so
}

TEST_F(ReportPrivacyOf, LinesNameFilesFromTheRootOfThePlayer) {
  EXPECT_EQ(privacy().line("missing: /media/ann/IPOD/iPod_Control/a.mp3"), "missing: /iPod_Control/a.mp3");
  EXPECT_EQ(privacy().line("playlist 0 \"Ann's iPod\": a@b.cd"),
            "playlist 0 \"(left out)\": (address left out)");
}

TEST_F(ReportPrivacyOf, LinesNameTheFileAloneWithoutAPlayer) {
  location_.volumeRoot.clear();
  location_.file = "/home/ann/old.itunesdb";
  EXPECT_EQ(privacy().line("/home/ann/old.itunesdb is damaged"), "old.itunesdb is damaged");
}

TEST_F(ReportPrivacyOf, NumberTooShortToTellAPlayerLeavesTextsAlone) {
  device_.serialNumber = "1";
  EXPECT_EQ(privacy().text("Track 1"), "Track 1");
}

TEST_F(ReportPrivacyOf, TextOfNumbersAloneTakesTimeInProportion) {
  std::string text;
  for (int i = 0; i < 200'000; ++i) text += device_.serialNumber;
  EXPECT_EQ(privacy().text(text).size(), 200'000 * std::string("(left out)").size());
}

}  // namespace
}  // namespace zemhost
