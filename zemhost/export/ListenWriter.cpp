#include <ctime>
#include <optional>
#include <string>
#include <utility>

#include "zemhost/export/ExportWriter.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

// The moment of a date in UTC, or on the player's clock, which is taken to show the time of this machine's
// zone.
std::optional<int64_t> momentOf(const std::string &date, bool isUtc) {
  std::tm parts{};
  const char *const end = strptime(date.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
  if (end == nullptr || *end != '\0') return std::nullopt;
  if (isUtc) return timegm(&parts);
  parts.tm_isdst = -1;  // whichever held then
  return std::mktime(&parts);
}

class ListenWriter final : public ExportWriter {
 public:
  ListenWriter(std::unique_ptr<EncodedOutput> out, bool datesAreUtc)
      : out_(std::move(out)), datesAreUtc_(datesAreUtc) {}

  void song(Row row) override {
    enum { Title, Artist, Album, Track, Duration, LastPlayed, Plays };
    if (row[Plays].is_null() || row[Plays] == 0) return;
    const auto moment = row[LastPlayed].is_string()
                            ? momentOf(row[LastPlayed].get<std::string>(), datesAreUtc_)
                            : std::nullopt;
    if (!moment || row[Title].is_null() || row[Artist].is_null()) {
      ++leftOut_;
      return;
    }
    Json info = {{"submission_client", "zemhost"}, {"plays_since_sync", row[Plays]}};
    if (row[Duration] != 0) info["duration_ms"] = row[Duration];
    if (row[Track] != 0) info["tracknumber"] = row[Track];
    Json metadata = {{"artist_name", row[Artist]}, {"track_name", row[Title]}};
    if (!row[Album].is_null()) metadata["release_name"] = row[Album];
    metadata["additional_info"] = std::move(info);
    const Json listen = {{"listened_at", *moment}, {"track_metadata", std::move(metadata)}};
    out_->write(jsonLine(listen) + '\n');
  }

  void finish() override {
    out_->finish();
    if (leftOut_ != 0) {
      printError(countText(leftOut_, "song", "songs") +
                 " left out: without a title, an artist or the time it was played");
    }
  }

 private:
  std::unique_ptr<EncodedOutput> out_;
  bool datesAreUtc_;
  uint64_t leftOut_ = 0;
};

}  // namespace

const std::vector<std::string> &listenFields() {
  static const std::vector<std::string> kFields = {"title",       "artist",      "album",           "track",
                                                   "duration_ms", "last_played", "plays_since_sync"};
  return kFields;
}

std::unique_ptr<ExportWriter> makeListenWriter(std::unique_ptr<EncodedOutput> out, bool datesAreUtc) {
  return std::make_unique<ListenWriter>(std::move(out), datesAreUtc);
}

}  // namespace zemhost
