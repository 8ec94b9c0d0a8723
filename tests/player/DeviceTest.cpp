// What a player says of itself.

#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/Device.h"
#include "samples/SmartObjects.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string modelText(const std::optional<PlayerModel> &model) { return model ? model->text() : "none"; }

TEST(ModelTable, ModelNumberSaysWhichPlayerWithoutItsFirstLetter) {
  EXPECT_EQ(modelText(modelOfNumber("P9282")), "iPod (generation 4), 20 GB, white");
  EXPECT_EQ(modelText(modelOfNumber("MB598LL/A")), "iPod nano (generation 4), 8 GB, silver");
  EXPECT_EQ(modelText(modelOfNumber("xA452")), "iPod (generation 5), 30 GB, U2");
  EXPECT_EQ(modelText(modelOfNumber("MKN52LL")), "iPod nano (generation 7), 16 GB, space gray");
  EXPECT_EQ(modelText(modelOfNumber("M9829")), "iPod photo, 30 GB, white");
  EXPECT_EQ(modelText(modelOfNumber("MC293")), "iPod classic (generation 7), 160 GB, silver");
  for (const char *const other : {"", "M", "M928", "M0000", "9282"})
    EXPECT_EQ(modelOfNumber(other), std::nullopt) << other;
}

TEST(ModelTable, EndOfTheSerialNumberSaysWhichPlayer) {
  EXPECT_EQ(modelText(modelOfSerial("XX000000Q8U")), "iPod (generation 4), 20 GB, white");
  EXPECT_EQ(modelText(modelOfSerial("JQ000000MME")), "iPod (generation 1), 10 GB, white");
  EXPECT_EQ(modelText(modelOfSerial("DCY00000F0GP")), "iPod nano (generation 7), 16 GB, blue");
  for (const char *const other : {"", "Q8U", "XX00000Q8U", "XX0000000Q8U", "XX000000ZZZ"})
    EXPECT_EQ(modelOfSerial(other), std::nullopt) << other;
}

TEST(ModelTable, FamilySaysLeast) {
  EXPECT_EQ(modelText(modelOfFamily(9)), "iPod nano (generation 2)");
  EXPECT_EQ(modelText(modelOfFamily(132)), "iPod shuffle (generation 3)");
  EXPECT_EQ(modelOfFamily(0), std::nullopt);
}

constexpr const char *kSysInfo =
    "BoardHwName: iPod Q21\npszSerialNumber: XX000000Q8U \nModelNumStr: P9282\n"
    "FirewireGuid: 0x000A270000000000\nbuildID: 0x03028000 (3.0.2)\nvisibleBuildID: 0x03028000 (3.0.2)\n"
    "iPodFamily: 0x00000004\n\n\n";

std::string plistOf(const std::string &entries) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//x//y\" "
         "\"http://x/y.dtd\">\n"
         "<plist version=\"1.0\"><dict>" +
         entries + "</dict></plist>\n";
}

TEST(SysInfo, SaysModelSerialNumberAndFirmware) {
  Device device;
  EXPECT_TRUE(addSysInfo(kSysInfo, device));
  findModel(device);
  EXPECT_EQ(device.modelNumber, "P9282");
  EXPECT_EQ(device.serialNumber, "XX000000Q8U");
  EXPECT_EQ(device.firmware, "3.0.2");
  EXPECT_EQ(device.guid, "0x000A270000000000");
  EXPECT_EQ(device.family, 4U);
  EXPECT_EQ(modelText(device.model), "iPod (generation 4), 20 GB, white");
}

TEST(SysInfo, EveryBeginningOfItIsReadAsFarAsItGoes) {
  const std::string whole = kSysInfo;
  for (size_t size = 0; size <= whole.size(); ++size) {
    Device device;
    addSysInfo(whole.substr(0, size), device);
    EXPECT_TRUE(std::string("P9282").starts_with(device.modelNumber)) << size;
  }
  Device device;
  EXPECT_FALSE(addSysInfo(std::string("\0\xff\n:\n::\nModel", 13), device));
  EXPECT_FALSE(addSysInfo("", device));
}

TEST(SysInfoExtended, SaysTheSameInXml) {
  Device device;
  EXPECT_TRUE(addSysInfoExtended(
      plistOf("<key>AlbumArt</key><array><dict><key>SerialNumber</key><string>inner</string></dict></array>"
              "<key>FamilyID</key><integer>015</integer><key>SerialNumber</key><string>XX000000Q8U  </string>"
              "<key>VisibleBuildID</key><string>1.0.4</string><key>SQLiteDB</key><true/>"
              "<key>FireWireGUID</key><string>000A27</string>"),
      device));
  findModel(device);
  EXPECT_EQ(device.serialNumber, "XX000000Q8U");
  EXPECT_EQ(device.firmware, "1.0.4");
  EXPECT_EQ(device.guid, "000A27");
  EXPECT_EQ(device.family, 15U);
  EXPECT_EQ(modelText(device.model), "iPod (generation 4), 20 GB, white");  // the serial number says more
}

TEST(SysInfoExtended, FamilyIsTakenWhereNothingElseIsKnown) {
  Device device;
  EXPECT_TRUE(addSysInfoExtended(plistOf("<key>FamilyID</key><integer>0015</integer>"), device));
  findModel(device);
  EXPECT_EQ(modelText(device.model), "iPod nano (generation 4)");
}

TEST(SysInfoExtended, BrokenXmlAndEntitiesEndTheReading) {
  const std::string good = "<key>SerialNumber</key><string>S</string>";
  const std::string whole = plistOf(good + "<key>BuildID</key><string>&#65;</string>");
  for (size_t size = 0; size < whole.size(); ++size) {
    Device device;
    addSysInfoExtended(whole.substr(0, size), device);
    EXPECT_TRUE(device.serialNumber.empty() || device.serialNumber == "S");
  }
  Device device;
  EXPECT_FALSE(
      addSysInfoExtended("<!DOCTYPE plist [<!ENTITY a \"aaaa\">]><plist><dict><key>SerialNumber</key>"
                         "<string>&a;</string></dict></plist>",
                         device));
  EXPECT_FALSE(addSysInfoExtended(plistOf("<dict>" + good + "</dict>"), device));
  EXPECT_FALSE(addSysInfoExtended("bplist00", device));
}

TEST(DeviceInfo, SaysTheNamesOfPlayerUserAndComputer) {
  Device device;
  EXPECT_TRUE(addDeviceInfo(samples::DeviceInfoFile({u"Z\u00fcrich", u"anna", u"desk"}), device));
  EXPECT_EQ(device.name, "Z\u00fcrich");
  EXPECT_EQ(device.user, "anna");
  EXPECT_EQ(device.computer, "desk");
}

TEST(DeviceInfo, NameOfMoreCharactersThanThereIsRoomForIsCutThere) {
  std::string file = samples::DeviceInfoFile({u"name", u"user"});
  file.replace(0, 2, "\xff\xff");
  Device device;
  EXPECT_TRUE(addDeviceInfo(file, device));
  EXPECT_TRUE(device.name.starts_with("name"));
  EXPECT_EQ(device.user, "user");
  for (size_t size = 0; size < file.size(); ++size) {
    Device some;
    addDeviceInfo(file.substr(0, size), some);
  }
  Device none;
  EXPECT_FALSE(addDeviceInfo(std::string(1536, '\0'), none));
}

TEST(Preferences, SayTheZoneOfTheClockWhereItsPlaceIsKnown) {
  std::string file(2924, '\0');
  file.replace(0xb22, 2, "\x1c\x02");  // 540
  Device device;
  EXPECT_TRUE(addPreferences(file, device));
  EXPECT_EQ(device.clockZone, 3600);
  Device other;
  addPreferences(std::string(2844, '\x11'), other);
  EXPECT_EQ(other.clockZone, std::nullopt);
  file.replace(0xb22, 2, "\xff\x7f");  // more than any zone
  Device far;
  addPreferences(file, far);
  EXPECT_EQ(far.clockZone, std::nullopt);
}

TEST(SyncZone, IsStatedByHeadersThatAreLongEnough) {
  const support::TemporaryFolder folder;
  const auto zoneOf = [&](uint32_t length, uint32_t zone, samples::Variant variant) {
    samples::ChunkWriter out(variant);
    const size_t file = samples::BeginFile(out, 0, length);
    if (length >= 0x70) out.PutWord(file + 0x6c, zone);
    out.AppendBytes(std::string(0x70, '\x01'));
    out.Finish(file);
    const carbon::Descriptor open(::open(folder.write("db", out.TakeBytes()).c_str(), O_RDONLY | O_CLOEXEC));
    return syncZoneOf(open.number());
  };
  using enum samples::Variant;
  EXPECT_EQ(zoneOf(0xf4, static_cast<uint32_t>(-18000), LittleEndian), -18000);
  EXPECT_EQ(zoneOf(0xf4, 0, LittleEndian), 0);
  EXPECT_EQ(zoneOf(0x6c, 0, LittleEndian), std::nullopt);
  EXPECT_EQ(zoneOf(0xf4, 200000, LittleEndian), std::nullopt);
  EXPECT_EQ(zoneOf(0xf4, 3600, BigEndian), std::nullopt);
}

class DeviceTest : public testing::Test {
 protected:
  Device read() const { return readDevice(folder_.path()); }

  support::TemporaryFolder folder_;
};

TEST_F(DeviceTest, FilesThatAreThereAreJoinedAndNamed) {
  folder_.write("iPod_Control/Device/SysInfo");
  folder_.write("iPod_Control/Device/sysinfoextended",
                plistOf("<key>SerialNumber</key><string>XX000000Q8U</string>"));
  folder_.write("iPod_Control/iTunes/DeviceInfo", samples::DeviceInfoFile({u"Mine"}));
  const Device device = read();
  EXPECT_EQ(device.name, "Mine");
  EXPECT_EQ(modelText(device.model), "iPod (generation 4), 20 GB, white");
  EXPECT_THAT(device.files,
              ElementsAre("iPod_Control/iTunes/DeviceInfo", "iPod_Control/Device/SysInfo (empty)",
                          "iPod_Control/Device/sysinfoextended"));
  EXPECT_THAT(device.warnings, IsEmpty());
}

TEST_F(DeviceTest, FileThatSaysNothingIsLeftOutWithALine) {
  folder_.write("iPod_Control/Device/SysInfo", "something else");
  folder_.makeDirectory("iPod_Control/Device/SysInfoExtended");
  folder_.write("iPod_Control/iTunes/DeviceInfo", std::string((size_t{1} << 20) + 1, 'x'));
  const Device device = read();
  EXPECT_THAT(device.warnings,
              ElementsAre(HasSubstr("SysInfo: it does not say what the player is; what it says"),
                          HasSubstr("SysInfoExtended: it is no regular file"),
                          HasSubstr("DeviceInfo: it is too large")));
}

TEST_F(DeviceTest, LinkOutOfThePlayerIsNotFollowed) {
  const support::TemporaryFolder outside;
  outside.write("SysInfo", kSysInfo);
  folder_.makeDirectory("iPod_Control");
  std::filesystem::create_directory_symlink(outside.path(), folder_.path() / "iPod_Control/Device");
  const Device device = read();
  EXPECT_EQ(device.serialNumber, "");
  EXPECT_THAT(device.warnings, ElementsAre(HasSubstr("a symbolic link leads out of the player")));
}

TEST_F(DeviceTest, FolderThatIsNoPlayerSaysNothing) {
  const Device device = read();
  EXPECT_THAT(device.files, IsEmpty());
  EXPECT_THAT(device.warnings, IsEmpty());
  EXPECT_EQ(device.model, std::nullopt);
}

}  // namespace
}  // namespace player
