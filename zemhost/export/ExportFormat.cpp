#include "zemhost/export/ExportFormat.h"

#include <string_view>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

const std::vector<std::string> &exportFormats() {
  static const std::vector<std::string> kFormats = {"csv",  "tsv",  "json",   "ndjson",
                                                    "m3u8", "xspf", "sqlite", "listenbrainz"};
  return kFormats;
}

std::string formatOfEnding(const std::filesystem::path &file) {
  struct Ending {
    std::string_view text;
    std::string_view format;
  };
  static constexpr Ending kEndings[] = {{".csv", "csv"},       {".tsv", "tsv"},       {".json", "json"},
                                        {".ndjson", "ndjson"}, {".jsonl", "ndjson"},  {".m3u8", "m3u8"},
                                        {".xspf", "xspf"},     {".sqlite", "sqlite"}, {".sqlite3", "sqlite"},
                                        {".db", "sqlite"}};
  const std::string ending = foldedText(file.extension().string());
  for (const Ending &known : kEndings) {
    if (known.text == ending) return std::string(known.format);
  }
  return {};
}

}  // namespace zemhost
