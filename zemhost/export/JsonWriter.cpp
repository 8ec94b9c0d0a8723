#include <string>
#include <utility>

#include "zemhost/export/ExportWriter.h"
#include "zemhost/output/JsonText.h"

namespace zemhost {

namespace {

// Rows of the same columns as objects of JSON. To make such an object of each row first would take longer
// than to read the song.
class RowText {
 public:
  explicit RowText(const std::vector<ExportColumn> &columns) {
    for (const ExportColumn &column : columns)
      names_.push_back((names_.empty() ? "{" : ",") + jsonText(column.name) + ':');
  }

  // Adds the row to a text, but for the brace at its end.
  void appendOpen(std::string &text, const Row &row) const {
    for (size_t i = 0; i < names_.size(); ++i) {
      text += names_[i];
      appendJson(text, row[i]);
    }
  }

  void append(std::string &text, const Row &row) const {
    appendOpen(text, row);
    text += '}';
  }

 private:
  std::vector<std::string> names_;  // each with what stands around it
};

// Songs and playlists are written as they come, so that a large library needs no more memory than a small
// one.
class JsonWriter final : public ExportWriter {
 public:
  JsonWriter(std::unique_ptr<EncodedOutput> out, const SongColumnList &columns)
      : out_(std::move(out)), songText_(columns) {
    out_->write("{\n\"format\": \"zemhost-export\",\n\"version\": 1,\n\"songs\": [");
  }

  void song(Row row) override {
    line_ = songs_++ == 0 ? "\n" : ",\n";
    songText_.append(line_, row);
    out_->write(line_);
  }

  void playlist(const Row &row) override {
    endEntries();
    if (playlists_ == 0) out_->write("\n],\n\"playlists\": [");
    line_ = playlists_++ == 0 ? "\n" : ",\n";
    playlistText_.appendOpen(line_, row);
    out_->write(line_ + ",\"entries\":[");
  }

  void entry(const Row &row) override {
    line_ = entries_++ == 0 ? "\n  " : ",\n  ";
    entryText_.append(line_, row);
    out_->write(line_);
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
  RowText songText_;
  RowText playlistText_{PlaylistColumns::columns()};
  RowText entryText_{PlaylistColumns::entryColumns()};
  std::string line_;  // what is written next
  uint64_t songs_ = 0;
  uint64_t playlists_ = 0;
  uint64_t entries_ = 0;  // of the playlist at hand
};

class NdjsonWriter final : public ExportWriter {
 public:
  NdjsonWriter(std::unique_ptr<EncodedOutput> out, const SongColumnList &columns)
      : out_(std::move(out)), songText_(columns) {}

  void song(Row row) override {
    line_.clear();
    songText_.append(line_, row);
    out_->write(line_ += '\n');
  }
  void finish() override { out_->finish(); }

 private:
  std::unique_ptr<EncodedOutput> out_;
  RowText songText_;
  std::string line_;
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
