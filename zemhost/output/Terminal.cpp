#include "zemhost/output/Terminal.h"

#include <charconv>
#include <clocale>
#include <cstdlib>
#include <langinfo.h>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zemhost {

std::optional<size_t> terminalWidth(int descriptor) {
  if (isatty(descriptor) == 0) return std::nullopt;
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  constexpr size_t kUsual = 80;
  const char *const columns = std::getenv("COLUMNS");
  if (columns == nullptr) return kUsual;
  const std::string_view text = columns;
  size_t width = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), width);
  return error == std::errc() && end == text.data() + text.size() && width > 0 ? width : kUsual;
}

bool isLocaleUtf8() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) return false;  // one that this machine does not know
  const bool isUtf8 = std::string_view(nl_langinfo_l(CODESET, locale)) == "UTF-8";
  freelocale(locale);
  return isUtf8;
}

bool showsStyles(int descriptor) {
  const char *const kind = std::getenv("TERM");
  return std::getenv("NO_COLOR") == nullptr && kind != nullptr && std::string_view(kind) != "dumb" &&
         isatty(descriptor) != 0;
}

std::string bold(std::string_view text) { return "\x1b[1m" + std::string(text) + "\x1b[0m"; }

std::string boldRed(std::string_view text) { return "\x1b[1;31m" + std::string(text) + "\x1b[0m"; }

}  // namespace zemhost
