#include <string>
#include <string_view>
#include <utility>

#include "zemhost/export/ExportWriter.h"
#include "zemhost/output/DisplayText.h"
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

// Whether a spreadsheet would compute the cell.
bool isFormula(std::string_view text) { return text.find_first_of("=+-@\t\r\n") == 0; }

class TextTableWriter final : public ExportWriter {
 public:
  TextTableWriter(TextTable form, std::unique_ptr<EncodedOutput> out, const SongColumnList &columns)
      : form_(form), out_(std::move(out)) {
    if (form_ == TextTable::ExcelCsv) line_ = "\xEF\xBB\xBF";
    for (const ExportColumn &column : columns) addField(column.name);
    endLine();
  }

  void song(Row row) override {
    for (const Json &value : row) {
      std::string text = textOf(value);
      if (form_ == TextTable::ExcelCsv && value.is_string() && isFormula(text)) text.insert(0, 1, '\'');
      addField(out_->fit(text));
    }
    endLine();
  }

  void finish() override { out_->finish(); }

 private:
  void addField(std::string_view text) {
    if (!isFirst_) line_ += form_ == TextTable::Tsv ? '\t' : ',';
    isFirst_ = false;
    if (form_ == TextTable::Tsv) {
      line_ += oneLine(text);
      return;
    }
    if (!needsQuotes(text)) {
      line_ += text;
      return;
    }
    line_ += '"';
    for (const char c : text) line_.append(c == '"' ? 2 : 1, c);
    line_ += '"';
  }

  void endLine() {
    line_ += form_ == TextTable::Tsv ? "\n" : "\r\n";
    out_->write(line_);
    line_.clear();
    isFirst_ = true;
  }

  TextTable form_;
  std::unique_ptr<EncodedOutput> out_;
  std::string line_;
  bool isFirst_ = true;
};

}  // namespace

std::unique_ptr<ExportWriter> makeTextTableWriter(TextTable form, std::unique_ptr<EncodedOutput> out,
                                                  const SongColumnList &columns) {
  return std::make_unique<TextTableWriter>(form, std::move(out), columns);
}

}  // namespace zemhost
