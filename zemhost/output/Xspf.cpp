#include "zemhost/output/Xspf.h"

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

std::string xmlText(std::string_view text) {
  std::string escaped;
  for (const char c : safeText(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += c;
    }
  }
  // The only characters of UTF-8 beside controls that XML does not take: U+FFFE, U+FFFF.
  for (const std::string_view none : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
    for (size_t at = 0; (at = escaped.find(none, at)) != std::string::npos;)
      escaped.replace(at, none.size(), "\xEF\xBF\xBD");
  }
  return escaped;
}

std::string locationOf(std::string_view path) {
  constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string location = path.starts_with("//") ? "/." : "";  // else it would name another machine
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (kPlain.find(c) != std::string_view::npos) {
      location += c;
    } else {
      location.append("%").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
    }
  }
  return location;
}

std::string element(const std::string &name, const std::string &content) {
  return content.empty() ? std::string() : "      <" + name + ">" + content + "</" + name + ">\n";
}

}  // namespace

std::string xspfHeading(std::string_view name, std::string_view remark) {
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  if (!remark.empty()) text.append("<!-- ").append(remark).append(" -->\n");
  text += "<playlist version=\"1\" xmlns=\"http://xspf.org/ns/0/\">\n";
  if (!name.empty()) text += "  <title>" + xmlText(name) + "</title>\n";
  return text + "  <trackList>\n";
}

std::string xspfEntry(const ListedSong &song) {
  return "    <track>\n" + element("location", locationOf(song.path)) +
         element("title", xmlText(song.title)) + element("creator", xmlText(song.artist)) +
         element("album", xmlText(song.album)) +
         element("duration", song.duration == 0 ? "" : std::to_string(song.duration)) + "    </track>\n";
}

std::string xspfEnd() { return "  </trackList>\n</playlist>\n"; }

}  // namespace zemhost
