#include "zemhost/rescue/CopyReport.h"

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "host/Error.h"
#include "player/FileBytes.h"
#include "zemhost/files/OutputFile.h"
#include "zemhost/files/PendingFile.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/rescue/FileCopy.h"

namespace zemhost {

namespace {

constexpr std::string_view kFirstLine = "{\"format\":\"zemhost rescue report\",\"version\":1}\n";

std::string nameNumbered(int number) {
  std::string name = "rescue-report";
  if (number > 1) name.append(" (").append(std::to_string(number)).append(")");
  return name.append(".ndjson");
}

// Of an array of [offset, bytes].
std::vector<Gap> gapsIn(const Json &json) {
  std::vector<Gap> gaps;
  for (const Json &gap : json) {
    if (gap.is_array() && gap.size() == 2 && gap[0].is_number_unsigned() && gap[1].is_number_unsigned())
      gaps.push_back({gap[0].get<uint64_t>(), gap[1].get<uint64_t>()});
  }
  return gaps;
}

std::optional<CopyRecord> recordIn(std::string_view line) {
  const Json json = Json::parse(line, nullptr, false);
  if (!json.is_object()) return std::nullopt;
  const auto file = json.find("file");
  const auto size = json.find("size");
  const auto modified = json.find("modified");
  const auto song = json.find("song");
  if (file == json.end() || !file->is_string() || size == json.end() || !size->is_number_unsigned() ||
      song == json.end() || !song->is_object() || modified == json.end() || !modified->is_array() ||
      modified->size() != 2 || !(*modified)[0].is_number_integer() || !(*modified)[1].is_number_integer())
    return std::nullopt;
  CopyRecord record;
  record.file = file->get<std::string>();
  record.song = jsonLine(*song);
  record.size = size->get<uint64_t>();
  const auto tagged = json.find("tagged_size");
  if (tagged != json.end() && tagged->is_number_unsigned()) record.taggedSize = tagged->get<uint64_t>();
  record.modified.tv_sec = (*modified)[0].get<time_t>();
  record.modified.tv_nsec = (*modified)[1].get<long>();
  if (const auto sum = json.find("sha256"); sum != json.end() && sum->is_string())
    record.sha256 = sum->get<std::string>();
  if (const auto gaps = json.find("unread"); gaps != json.end() && gaps->is_array())
    record.gaps = gapsIn(*gaps);
  return record;
}

std::string lineOf(const CopyRecord &record) {
  std::string line = "{\"file\":";
  line.append(quotedLine(record.file));
  line.append(",\"size\":").append(std::to_string(record.size));
  line.append(",\"modified\":[").append(std::to_string(record.modified.tv_sec));
  line.append(",").append(std::to_string(record.modified.tv_nsec));
  line.append("],\"sha256\":").append(quotedLine(record.sha256));
  Json unread;
  for (const Gap &gap : record.gaps) unread.push_back({gap.offset, gap.size});
  if (!record.gaps.empty()) line.append(",\"unread\":").append(jsonLine(unread));
  if (record.taggedSize != 0) line.append(",\"tagged_size\":").append(std::to_string(record.taggedSize));
  return line.append(",\"song\":").append(record.song).append("}\n");
}

bool isSame(const CopyRecord &one, const CopyRecord &other) {
  return one.song == other.song && one.sha256 == other.sha256 && one.gaps == other.gaps &&
         one.size == other.size && one.taggedSize == other.taggedSize &&
         one.modified.tv_sec == other.modified.tv_sec && one.modified.tv_nsec == other.modified.tv_nsec;
}

}  // namespace

std::string songIdentity(const Song &song, const SongFile &file) {
  std::string line = "{\"path\":";
  line.append(quotedLine(file.name));
  line.append(",\"track_id\":").append(song.id ? std::to_string(*song.id) : "null");
  line.append(",\"title\":").append(quotedLine(song.title));
  line.append(",\"artist\":").append(quotedLine(song.artist));
  return line.append(",\"album\":").append(quotedLine(song.album)).append("}");
}

CopyReport::CopyReport(const DestinationFolder &destination) : destination_(destination) {
  for (int number = 1;; ++number) {
    name_ = nameNumbered(number);
    if (!destination_.statusOf(name_)) return;
    exists_ = isReport();
    if (!exists_) continue;
    read();
    return;
  }
}

bool CopyReport::isReport() const {
  try {
    return S_ISREG(destination_.statusOf(name_).value().st_mode) &&
           player::readAt(destination_.open(name_).number(), 0, kFirstLine.size()) == kFirstLine;
  } catch (const std::exception &) {
    return false;  // gone, or nothing that can be read
  }
}

void CopyReport::read() {
  std::string text;
  const carbon::Descriptor file = destination_.open(name_);
  constexpr size_t kStep = size_t{1} << 20;
  for (std::string step(kStep, '\0'); step.size() == kStep; text += step)
    step = player::readAt(file.number(), text.size(), kStep);
  for (std::string_view rest = text; !rest.empty();) {
    const size_t end = rest.find('\n');
    if (std::optional<CopyRecord> record = recordIn(rest.substr(0, end))) remember(*std::move(record));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  endsInALine_ = text.ends_with('\n');
}

const CopyRecord *CopyReport::ofFile(const std::string &file) const {
  const auto found = byFile_.find(file);
  return found == byFile_.end() ? nullptr : &found->second;
}

const CopyRecord *CopyReport::ofSong(const std::string &song) const {
  const auto found = fileOfSong_.find(song);
  const CopyRecord *const record = found == fileOfSong_.end() ? nullptr : ofFile(found->second);
  return record != nullptr && record->song == song ? record : nullptr;
}

void CopyReport::remember(CopyRecord record) {
  fileOfSong_[record.song] = record.file;
  byFile_[record.file] = std::move(record);
}

void CopyReport::make() {
  if (!exists_) {
    try {
      OutputFile first(path());
      first.write(kFirstLine);
      first.finish();
    } catch (const HostError &) {
      if (!isReport()) throw;  // else another run has just made it
    }
    exists_ = true;
  }
  file_ = carbon::Descriptor(open(path().c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (!file_) throw HostError(path(), errno);
}

void CopyReport::add(CopyRecord record) {
  if (const CopyRecord *known = ofFile(record.file); known != nullptr && isSame(*known, record)) return;
  if (!file_) make();
  std::string line = std::exchange(endsInALine_, true) ? "" : "\n";
  writeAll(file_.number(), line.append(lineOf(record)), path());
  remember(std::move(record));
}

}  // namespace zemhost
