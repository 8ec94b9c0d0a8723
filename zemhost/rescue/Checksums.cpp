#include "zemhost/rescue/Checksums.h"

#include <algorithm>
#include <sys/stat.h>
#include <system_error>

#include "player/FileBytes.h"
#include "zemhost/files/OutputFile.h"
#include "zemhost/rescue/FileCopy.h"

namespace zemhost {

namespace {

constexpr size_t kDigits = 64;

std::string escaped(std::string_view name) {
  if (name.find_first_of("\\\n\r") == std::string_view::npos) return std::string(name);
  std::string text;
  for (const char c : name) {
    if (c == '\\') {
      text += "\\\\";
    } else if (c == '\n') {
      text += "\\n";
    } else if (c == '\r') {
      text += "\\r";
    } else {
      text += c;
    }
  }
  return text;
}

// Nothing for an escape that there is not.
std::optional<std::string> unescaped(std::string_view text) {
  std::string name;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      name += text[i];
      continue;
    }
    if (++i == text.size()) return std::nullopt;
    if (text[i] != '\\' && text[i] != 'n' && text[i] != 'r') return std::nullopt;
    name += text[i] == 'n' ? '\n' : text[i] == 'r' ? '\r' : '\\';
  }
  return name;
}

bool isSum(std::string_view text) {
  return text.size() == kDigits && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

}  // namespace

std::optional<Checksums> Checksums::read(std::string_view text) {
  Checksums checksums;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    const bool isEscaped = line.starts_with('\\');
    if (isEscaped) line.remove_prefix(1);
    // Behind the sum a blank, and a blank or a star: the file was read as text or as bytes, which are the
    // same.
    if (line.size() < kDigits + 3 || !isSum(line.substr(0, kDigits)) || line[kDigits] != ' ' ||
        (line[kDigits + 1] != ' ' && line[kDigits + 1] != '*'))
      return std::nullopt;
    const std::string_view name = line.substr(kDigits + 2);
    const std::optional<std::string> file = isEscaped ? unescaped(name) : std::string(name);
    if (!file) return std::nullopt;
    checksums.set(*file, std::string(line.substr(0, kDigits)));
  }
  return checksums;
}

std::string Checksums::text() const {
  std::string text;
  for (const auto &[file, sum] : sums_) {
    const std::string name = escaped(file);
    if (name != file) text += '\\';
    text.append(sum).append("  ").append(name).append("\n");
  }
  return text;
}

std::optional<Checksums> checksumsIn(const DestinationFolder &folder, const std::string &name) {
  const auto status = folder.statusOf(name);
  if (!status || !S_ISREG(status->st_mode)) return std::nullopt;
  try {
    const auto size = static_cast<size_t>(status->st_size);
    return Checksums::read(player::readAt(folder.open(name).number(), 0, size));
  } catch (const std::system_error &error) {
    throw CopyFailure(CopyFailure::Reach::ThisFile, error.code().value());
  }
}

void extendChecksums(const DestinationFolder &folder, const Checksums &more) {
  if (more.sums().empty()) return;
  std::string name = kChecksumFile;
  std::optional<Checksums> sums;
  for (int number = 2; folder.statusOf(name) && !(sums = checksumsIn(folder, name)); ++number)
    name = std::string(kChecksumFile) + " (" + std::to_string(number) + ")";
  if (!sums) sums.emplace();
  const std::string before = sums->text();
  for (const auto &[file, sum] : more.sums()) sums->set(file, sum);
  const std::string after = sums->text();
  if (after == before) return;
  OutputFile out(folder.path() / name);
  out.write(after);
  out.finish();
}

}  // namespace zemhost
