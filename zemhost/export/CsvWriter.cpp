#include <string>
#include <string_view>
#include <utility>

#include "zemhost/export/ExportWriter.h"
#include "zemhost/output/JsonText.h"

namespace zemhost {

namespace {

std::string textOf(const Json &value) {
  if (value.is_null()) return {};
  return value.is_string() ? value.get<std::string>() : jsonText(value);
}

// A blank at either end is quoted too, since some readers take it off.
bool needsQuotes(std::string_view text) {
  return text.find_first_of(",\"\r\n") != std::string_view::npos || text.starts_with(' ') ||
         text.ends_with(' ');
}

class CsvWriter final : public ExportWriter {
 public:
  CsvWriter(std::unique_ptr<EncodedOutput> out, const SongColumnList &columns) : out_(std::move(out)) {
    for (const ExportColumn &column : columns) addField(column.name);
    endLine();
  }

  void song(Row row) override {
    for (const Json &value : row) addField(out_->fit(textOf(value)));
    endLine();
  }

  void finish() override { out_->finish(); }

 private:
  void addField(std::string_view text) {
    if (!isFirst_) line_ += ',';
    isFirst_ = false;
    if (!needsQuotes(text)) {
      line_ += text;
      return;
    }
    line_ += '"';
    for (const char c : text) line_.append(c == '"' ? 2 : 1, c);
    line_ += '"';
  }

  void endLine() {
    line_ += "\r\n";
    out_->write(line_);
    line_.clear();
    isFirst_ = true;
  }

  std::unique_ptr<EncodedOutput> out_;
  std::string line_;
  bool isFirst_ = true;
};

}  // namespace

std::unique_ptr<ExportWriter> makeCsvWriter(std::unique_ptr<EncodedOutput> out,
                                            const SongColumnList &columns) {
  return std::make_unique<CsvWriter>(std::move(out), columns);
}

}  // namespace zemhost
