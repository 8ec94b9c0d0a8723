#include "zemhost/output/ShiftJisTable.h"

#include <fstream>
#include <string_view>

#include "host/Error.h"
#include "host/text/TextEncoding.h"
#include "platform/carbon/UnicodeForms.h"
#include "zemhost/files/TemporaryPath.h"

namespace zemhost {

namespace {

// The code of texts that the class converts by its table throughout; texts of other codes it hands on as
// they are when no character needs two bytes.
constexpr uint32_t kTableCode = 1;

// A player's database with one song: a file header and a track header, whose other fields count as zero.
constexpr std::string_view kOneSong(
    "mhbd\x10\0\0\0\x20\0\0\0\1\0\0\0"
    "mhit\x10\0\0\0\x10\0\0\0\0\0\0\0",
    32);

Object objectWithOneSong(const Host &host) {
  const TemporaryPath folder = makeTemporaryDirectory();
  const TemporaryPath file(folder.path() / "song");
  std::ofstream out(file.path(), std::ios::binary);
  out << kOneSong;
  if (!out.flush()) throw HostError(file.path().string() + ": the file cannot be written");
  Object object = host.make("ZemiTunesDB");
  if (!object.call("Load", {FolderItem::fromPath(file.path())}).boolean())
    throw HostError(file.path().string() + ": the plug-in could not load it");
  object.set("UseSJIS", true);
  object.set("ResultEncode", Value(kShiftJis));  // so that the bytes of the table come as they are
  return object;
}

}  // namespace

ShiftJisTable::ShiftJisTable(const Host &host)
    : object_(objectWithOneSong(host)),
      set_(object_.method("SetTitle(index As Integer, name As String)")),
      get_(object_.method("GetTitle(index As Integer) As String")) {}

const std::string &ShiftJisTable::bytesOf(char32_t character) {
  const auto [place, isNew] = known_.try_emplace(character);
  if (!isNew) return place->second;
  if (character < 0x80) {
    place->second = static_cast<char>(character);
  } else if (character < 0x10000) {
    std::string utf16;
    unicode::appendUtf16(utf16, character, true);
    set_(0, HostString::fromBytes(utf16, kTableCode));
    place->second = get_(0).bytes();
  }
  return place->second;
}

}  // namespace zemhost
