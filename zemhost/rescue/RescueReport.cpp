#include "zemhost/rescue/RescueReport.h"

#include <ctime>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

#include "player/FileBytes.h"
#include "zemhost/files/OutputFile.h"
#include "zemhost/output/JsonText.h"

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

Json songJson(const PlannedFile &file, const Copy &copy) {
  Json json = {{"file", copy.isThere ? Json(file.target) : Json()},
               {"source", file.source.path.string()},
               {"size", file.source.size},
               {"sha256", copy.isThere ? Json(copy.content.sha256) : Json()},
               {"song", Json::parse(file.identity)}};
  for (const Gap &gap : copy.content.gaps)
    json["unread"].push_back({{"offset", gap.offset}, {"bytes", gap.size}});
  return json;
}

}  // namespace

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
               {"problems", result.problems},
               {"songs", Json::array()}});
  for (size_t i = 0; i < rescue.copies.size(); ++i)
    json["songs"].push_back(songJson(rescue.plan.files()[i], rescue.copies[i]));
  int number = 1;
  while (!isFree(destination, nameNumbered(number))) ++number;
  OutputFile out(destination.path() / nameNumbered(number));
  out.write(jsonText(json, 2) + "\n");
  out.finish();
}

}  // namespace zemhost
