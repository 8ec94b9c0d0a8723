#include "zemhost/rescue/RescueReport.h"

#include <algorithm>
#include <ctime>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

#include "player/FileBytes.h"
#include "zemhost/files/OutputFile.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/rescue/Checksums.h"

namespace zemhost {

namespace {

// How every such report begins.
constexpr std::string_view kBeginning = "{\n  \"format\": \"zemhost rescue summary\",\n  \"version\": 1,";

std::string nameNumbered(int number) {
  std::string name = "rescue-report";
  if (number > 1) name.append(" (").append(std::to_string(number)).append(")");
  return name.append(".json");
}

bool isFree(const DestinationFolder &destination, const std::string &name) {
  const auto status = destination.statusOf(name);
  if (!status) return true;
  if (!S_ISREG(status->st_mode)) return false;
  try {
    return player::readAt(destination.open(name).number(), 0, kBeginning.size()) == kBeginning;
  } catch (const std::system_error &error) {
    throw CopyFailure(CopyFailure::Reach::ThisFile, error.code().value());
  }
}

std::string now() {
  const std::time_t time = std::time(nullptr);
  struct tm utc {};
  gmtime_r(&time, &utc);
  std::string text(32, '\0');
  text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc));
  return text;
}

std::string outcomeOf(const FinishedRescue &rescue) {
  if (!rescue.stopped.empty()) return "stopped";
  return rescue.result.isComplete() ? "complete" : "incomplete";
}

// As jsonText() has it.
std::string quoted(const std::string &text) { return escapedJson(quotedLine(text)); }

std::string songText(const PlannedFile &file, const Copy &copy) {
  std::string text = "    {\n      \"file\": ";
  text.append(copy.isThere ? quoted(file.target) : "null");
  text.append(",\n      \"source\": ").append(quoted(file.source.path.string()));
  text.append(",\n      \"size\": ").append(std::to_string(file.source.size));
  text.append(",\n      \"sha256\": ").append(copy.isThere ? quoted(copy.content.sha256) : "null");
  text.append(",\n      \"song\": ").append(indentedObject(escapedJson(file.identity), 8));
  for (const Gap &gap : copy.content.gaps) {
    text.append(&gap == &copy.content.gaps.front() ? ",\n      \"unread\": [" : ",");
    text.append("\n        {\n          \"offset\": ").append(std::to_string(gap.offset));
    text.append(",\n          \"bytes\": ").append(std::to_string(gap.size)).append("\n        }");
  }
  if (!copy.content.gaps.empty()) text.append("\n      ]");
  return text.append("\n    }");
}

}  // namespace

void writeChecksums(const DestinationFolder &destination, const CopyReport &report,
                    const FinishedRescue &rescue) {
  std::vector<std::string_view> arrived;
  for (size_t place = 0; place < rescue.copies.size(); ++place) {
    if (rescue.copies[place].isThere) arrived.emplace_back(rescue.plan.files()[place].target);
  }
  std::sort(arrived.begin(), arrived.end());
  Checksums sums;
  for (const auto &[file, record] : report.records()) {
    if (record.sha256.empty()) continue;
    if (std::binary_search(arrived.begin(), arrived.end(), file) || destination.statusOf(file))
      sums.set(file, record.sha256);
  }
  extendChecksums(destination, sums);
}

void writeRescueReport(const DestinationFolder &destination, const FinishedRescue &rescue) {
  const RescueResult &result = rescue.result;
  Json json = {{"format", "zemhost rescue summary"},
               {"version", 1},
               {"finished", now()},
               {"database", rescue.library.location().file.string()},
               {"volume", rescue.library.volumeName()},
               {"outcome", outcomeOf(rescue)}};
  if (!rescue.stopped.empty()) json["stopped"] = rescue.stopped;
  json.update({{"copied", result.copied},
               {"copied_bytes", result.copiedBytes},
               {"already_there", result.alreadyThere},
               {"verified", result.verified},
               {"playlists", result.playlists},
               {"covers", result.covers},
               {"short_files", result.shortFiles},
               {"damaged", result.damaged},
               {"remarks", result.remarks},
               {"problems", result.problems}});
  int number = 1;
  while (!isFree(destination, nameNumbered(number))) ++number;
  OutputFile out(destination.path() / nameNumbered(number));
  std::string head = jsonText(json, 2);
  head.erase(head.rfind("\n}"));  // the songs follow
  out.write(head + ",\n  \"songs\": [");
  for (size_t i = 0; i < rescue.copies.size(); ++i) {
    out.write(i == 0 ? "\n" : ",\n");
    out.write(songText(rescue.plan.files()[i], rescue.copies[i]));
  }
  out.write(rescue.copies.empty() ? "]\n}\n" : "\n  ]\n}\n");
  out.finish();
}

}  // namespace zemhost
