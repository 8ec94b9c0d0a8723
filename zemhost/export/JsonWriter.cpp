#include <string>
#include <utility>

#include "zemhost/export/ExportWriter.h"
#include "zemhost/output/JsonText.h"

namespace zemhost {

namespace {

Json objectOf(const std::vector<ExportColumn> &columns, const Row &row) {
  Json object = Json::object();
  for (size_t i = 0; i < columns.size(); ++i) object[std::string(columns[i].name)] = row[i];
  return object;
}

// Songs and playlists are written as they come, so that a large library needs no more memory than a small
// one.
class JsonWriter final : public ExportWriter {
 public:
  JsonWriter(std::unique_ptr<EncodedOutput> out, SongColumnList columns)
      : out_(std::move(out)), columns_(std::move(columns)) {
    out_->write("{\n\"format\": \"zemhost-export\",\n\"version\": 1,\n\"songs\": [");
  }

  void song(Row row) override {
    out_->write(songs_++ == 0 ? "\n" : ",\n");
    out_->write(jsonText(objectOf(columns_, row)));
  }

  void playlist(const Row &row) override {
    endEntries();
    if (playlists_++ == 0) out_->write("\n],\n\"playlists\": [");
    std::string head = jsonText(objectOf(PlaylistColumns::columns(), row));
    head.pop_back();  // the brace, after the entries
    out_->write((playlists_ == 1 ? "\n" : ",\n") + head + ",\"entries\":[");
  }

  void entry(const Row &row) override {
    out_->write(entries_++ == 0 ? "\n  " : ",\n  ");
    out_->write(jsonText(objectOf(PlaylistColumns::entryColumns(), row)));
  }

  void finish() override {
    endEntries();
    out_->write(playlists_ == 0 ? "\n],\n\"playlists\": []\n}\n" : "\n]\n}\n");
    out_->finish();
  }

 private:
  void endEntries() {
    if (playlists_ != 0) out_->write("]}");
    entries_ = 0;
  }

  std::unique_ptr<EncodedOutput> out_;
  SongColumnList columns_;
  uint64_t songs_ = 0;
  uint64_t playlists_ = 0;
  uint64_t entries_ = 0;  // of the playlist at hand
};

class NdjsonWriter final : public ExportWriter {
 public:
  NdjsonWriter(std::unique_ptr<EncodedOutput> out, SongColumnList columns)
      : out_(std::move(out)), columns_(std::move(columns)) {}

  void song(Row row) override { out_->write(jsonText(objectOf(columns_, row)) + '\n'); }
  void finish() override { out_->finish(); }

 private:
  std::unique_ptr<EncodedOutput> out_;
  SongColumnList columns_;
};

}  // namespace

std::unique_ptr<ExportWriter> makeJsonWriter(std::unique_ptr<EncodedOutput> out,
                                             const SongColumnList &columns) {
  return std::make_unique<JsonWriter>(std::move(out), columns);
}

std::unique_ptr<ExportWriter> makeNdjsonWriter(std::unique_ptr<EncodedOutput> out,
                                               const SongColumnList &columns) {
  return std::make_unique<NdjsonWriter>(std::move(out), columns);
}

}  // namespace zemhost
