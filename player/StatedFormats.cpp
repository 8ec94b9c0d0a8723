#include "player/StatedFormats.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "player/PropertyXml.h"

namespace player {

namespace {

constexpr size_t kMostFormats = 256;
constexpr size_t kLongestText = 256;  // of a key or value that says something here
constexpr uint32_t kWidest = 0xFFFF;  // pixels

struct NamedForm {
  std::string_view letters;
  PixelForm form;
};
constexpr NamedForm kForms[] = {{"4C353635", PixelForm::Rgb565},  // "L565", and so on
                                {"42353635", PixelForm::Rgb565Swapped},
                                {"4C353535", PixelForm::Rgb555},
                                {"79343230", PixelForm::I420},
                                {"32767579", PixelForm::Uyvy}};

// Numbers of such files are decimal, whatever zeros stand before them.
uint32_t numberIn(const std::string &text) {
  const unsigned long number = std::strtoul(text.c_str(), nullptr, 10);
  return number > kWidest ? 0 : static_cast<uint32_t>(number);
}

class FormatReader : public PropertyXml {
 public:
  std::vector<PictureFormat> takeFormats() { return std::move(formats_); }

 private:
  // A dictionary that has begun.
  struct Dictionary {
    bool isOfFormats = false;  // stands below one of the two keys
    std::string key;
    std::optional<PixelForm> form;
    PictureFormat format;
    uint32_t alignment = 0;
  };

  void begin(std::string_view name) override {
    text_.clear();
    if (name != "dict") return;
    Dictionary dictionary;
    if (!open_.empty()) {
      const Dictionary &holder = open_.back();
      dictionary.isOfFormats =
          holder.isOfFormats || holder.key == "AlbumArt" || holder.key == "ImageSpecifications";
    }
    open_.push_back(std::move(dictionary));
  }

  void add(std::string_view text) override {
    if (text_.size() < kLongestText) text_.append(text.substr(0, kLongestText - text_.size()));
  }

  void end(std::string_view name) override {
    if (open_.empty()) return;
    if (name == "key") {
      open_.back().key = std::exchange(text_, {});
    } else if (name == "dict") {
      finish(open_.back());
      open_.pop_back();
    } else {
      take(open_.back());
    }
    text_.clear();
  }

  void take(Dictionary &dictionary) const {
    if (dictionary.key == "FormatId") dictionary.format.number = numberIn(text_);
    if (dictionary.key == "RenderWidth") dictionary.format.width = numberIn(text_);
    if (dictionary.key == "RenderHeight") dictionary.format.height = numberIn(text_);
    if (dictionary.key == "RowBytesAlignment") dictionary.alignment = numberIn(text_);
    if (dictionary.key != "PixelFormat") return;
    for (const NamedForm &known : kForms) {
      if (text_ == known.letters) dictionary.form = known.form;
    }
  }

  void finish(Dictionary &dictionary) {
    if (!dictionary.isOfFormats || !dictionary.form || formats_.size() == kMostFormats) return;
    PictureFormat &format = dictionary.format;
    format.pixels = *dictionary.form;
    const uint32_t row = 2 * format.width;
    const uint32_t gap = dictionary.alignment == 0 ? 0 : row % dictionary.alignment;
    if (gap != 0) format.rowBytes = row - gap + dictionary.alignment;
    if (format.number != 0 && pixelBytes(format) != 0) formats_.push_back(format);
  }

  std::vector<Dictionary> open_;
  std::string text_;  // of the element at hand
  std::vector<PictureFormat> formats_;
};

}  // namespace

std::vector<PictureFormat> statedFormats(std::string_view xml) {
  if (xml.size() > kMostStatedBytes) return {};
  FormatReader reader;
  reader.read(xml);
  return reader.takeFormats();
}

}  // namespace player
