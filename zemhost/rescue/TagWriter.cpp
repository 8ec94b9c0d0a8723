#include "zemhost/rescue/TagWriter.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <memory>
#include <taglib/aifffile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/popularimeterframe.h>
#include <taglib/tfilestream.h>
#include <taglib/tpropertymap.h>
#include <taglib/wavfile.h>
#include <unistd.h>
#include <utility>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

TagLib::String tagText(const std::string &utf8) { return {composedText(utf8), TagLib::String::UTF8}; }

// "2/9", "2"; empty for no number.
std::string placeText(uint32_t number, uint32_t total) {
  if (number == 0) return {};
  std::string text = std::to_string(number);
  if (total != 0) text.append("/").append(std::to_string(total));
  return text;
}

std::string numberOrNothing(uint32_t number) { return number == 0 ? std::string() : std::to_string(number); }

// Adds what the library says to a file's properties; whether that changes any.
bool fillProperties(TagLib::PropertyMap &properties, const SongTags &tags, TagMode mode) {
  const std::array<std::pair<const char *, std::string>, 11> values = {
      {{"TITLE", tags.title},
       {"ARTIST", tags.artist},
       {"ALBUMARTIST", tags.albumArtist},
       {"ALBUM", tags.album},
       {"GENRE", tags.genre},
       {"COMPOSER", tags.composer},
       {"COMMENT", tags.comment},
       {"TRACKNUMBER", placeText(tags.track, tags.trackTotal)},
       {"DISCNUMBER", placeText(tags.disc, tags.discs)},
       {"DATE", numberOrNothing(tags.year)},
       {"COMPILATION", tags.compilation ? "1" : ""}}};
  bool changed = false;
  for (const auto &[name, value] : values) {
    const TagLib::StringList before = properties[name];
    const bool isEmpty = before.toString("").stripWhiteSpace().isEmpty();
    if (!value.empty() && (mode == TagMode::Replace || isEmpty) &&
        before != TagLib::StringList(tagText(value))) {
      properties.replace(name, tagText(value));
      changed = true;
    } else if (before.isEmpty()) {
      properties.erase(name);
    }
  }
  return changed;
}

// The value of a rating as most programs read it from a popularity meter: 1, 64, 128, 196 and 255 are one
// star to five, and there are values in between for halves.
int popularity(uint32_t rating) {
  constexpr std::array<int, 11> kValues = {0, 13, 1, 54, 64, 118, 128, 186, 196, 242, 255};
  return kValues[std::min<size_t>(rating / 10, kValues.size() - 1)];
}

TagLib::ByteVector bytesOf(const std::string &bytes) {
  return {bytes.data(), static_cast<unsigned int>(bytes.size())};
}

bool isJpeg(const std::string &picture) { return picture.starts_with("\xFF\xD8"); }

bool fillMeter(TagLib::ID3v2::Tag &tag, const SongTags &tags, TagMode mode) {
  if (tags.rating == 0 && tags.plays == 0) return false;
  const bool hasOne = !tag.frameList("POPM").isEmpty();
  if (hasOne && mode == TagMode::Missing) return false;
  auto frame = std::make_unique<TagLib::ID3v2::PopularimeterFrame>();
  frame->setEmail("zemhost");
  frame->setRating(popularity(tags.rating));
  frame->setCounter(tags.plays);
  const auto rendered = frame->render();
  if (tag.frameList("POPM").size() == 1 && tag.frameList("POPM").front()->render() == rendered) return false;
  tag.removeFrames("POPM");
  tag.addFrame(frame.release());
  return true;
}

bool fillCover(TagLib::ID3v2::Tag &tag, const SongTags &tags, TagMode mode) {
  if (tags.cover.empty()) return false;
  const TagLib::ID3v2::FrameList &pictures = tag.frameList("APIC");
  if (!pictures.isEmpty() && mode == TagMode::Missing) return false;
  auto frame = std::make_unique<TagLib::ID3v2::AttachedPictureFrame>();
  frame->setMimeType(isJpeg(tags.cover) ? "image/jpeg" : "image/png");
  frame->setType(TagLib::ID3v2::AttachedPictureFrame::FrontCover);
  frame->setPicture(bytesOf(tags.cover));
  if (pictures.size() == 1 && pictures.front()->render() == frame->render()) return false;
  tag.removeFrames("APIC");
  tag.addFrame(frame.release());
  return true;
}

bool fillId3(TagLib::ID3v2::Tag &tag, const SongTags &tags, TagMode mode) {
  TagLib::PropertyMap properties = tag.properties();
  bool changed = fillProperties(properties, tags, mode);
  const TagLib::String kAdded = "DATE ADDED";
  if (!tags.dateAdded.empty() && (mode == TagMode::Replace || !properties.contains(kAdded)) &&
      properties[kAdded] != TagLib::StringList(tagText(tags.dateAdded))) {
    properties.replace(kAdded, tagText(tags.dateAdded));
    changed = true;
  }
  if (changed) tag.setProperties(properties);
  changed = fillMeter(tag, tags, mode) || changed;
  return fillCover(tag, tags, mode) || changed;
}

bool fillItem(TagLib::MP4::Tag &tag, const char *name, const std::string &value, TagMode mode) {
  if (value.empty() || (mode == TagMode::Missing && tag.contains(name))) return false;
  const TagLib::StringList wanted(tagText(value));
  if (tag.contains(name) && tag.item(name).toStringList() == wanted) return false;
  tag.setItem(name, wanted);
  return true;
}

bool fillMp4(TagLib::MP4::Tag &tag, const SongTags &tags, TagMode mode) {
  TagLib::PropertyMap properties = tag.properties();
  bool changed = fillProperties(properties, tags, mode);
  if (changed) tag.setProperties(properties);
  changed = fillItem(tag, "rate", numberOrNothing(tags.rating), mode) || changed;
  changed = fillItem(tag, "----:com.apple.iTunes:PLAYCOUNT", numberOrNothing(tags.plays), mode) || changed;
  changed = fillItem(tag, "----:com.apple.iTunes:DATE ADDED", tags.dateAdded, mode) || changed;
  if (tags.cover.empty() || (mode == TagMode::Missing && tag.contains("covr"))) return changed;
  const auto format = isJpeg(tags.cover) ? TagLib::MP4::CoverArt::JPEG : TagLib::MP4::CoverArt::PNG;
  const TagLib::ByteVector bytes = bytesOf(tags.cover);
  const TagLib::MP4::CoverArtList before = tag.item("covr").toCoverArtList();
  if (before.size() == 1 && before.front().data() == bytes) return changed;
  TagLib::MP4::CoverArtList covers;
  covers.append(TagLib::MP4::CoverArt(format, bytes));
  tag.setItem("covr", covers);
  return true;
}

TagOutcome outcomeOf(bool saved) { return saved ? TagOutcome::Written : TagOutcome::Refused; }

TagOutcome tagMpeg(TagLib::IOStream &stream, const SongTags &tags, TagMode mode) {
  using TagLib::MPEG::File;
  if (!File::isSupported(&stream)) return TagOutcome::Refused;
  File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
  if (!file.isValid()) return TagOutcome::Refused;
  const bool isOld = file.hasID3v2Tag() && file.ID3v2Tag()->header()->majorVersion() < 4;
  if (!fillId3(*file.ID3v2Tag(true), tags, mode)) return TagOutcome::Unchanged;
  // Tags of other kinds stay as they are.
  return outcomeOf(file.save(File::ID3v2, File::StripNone, isOld ? TagLib::ID3v2::v3 : TagLib::ID3v2::v4,
                             File::DoNotDuplicate));
}

// Whether the boxes of the outermost level, each with its length, fill the file. In a file that is cut off,
// or whose last box goes to the end without a length, the library would move what it does not know of.
bool isOfWholeBoxes(TagLib::IOStream &stream) {
  constexpr long kHeader = 8;
  const long length = stream.length();
  long at = 0;
  while (length - at >= kHeader) {
    stream.seek(at);
    const TagLib::ByteVector head = stream.readBlock(2 * kHeader);
    if (head.size() < static_cast<unsigned int>(kHeader)) return false;
    long long size = head.toUInt(0U);
    if (size == 1) size = head.size() == 2 * kHeader ? head.toLongLong(8U) : 0;
    if (size < kHeader || size > length - at) return false;
    at += static_cast<long>(size);
  }
  stream.seek(0);
  return at == length;
}

TagOutcome tagMp4(TagLib::IOStream &stream, const SongTags &tags, TagMode mode) {
  if (!isOfWholeBoxes(stream)) return TagOutcome::Refused;
  TagLib::MP4::File file(&stream, false);
  if (!file.isValid() || file.tag() == nullptr) return TagOutcome::Refused;
  if (!fillMp4(*file.tag(), tags, mode)) return TagOutcome::Unchanged;
  return outcomeOf(file.save());
}

// Whether a file begins as one of chunks does: the library takes any other for one without chunks.
bool isOfChunks(TagLib::IOStream &stream, const char *first, std::initializer_list<const char *> forms) {
  stream.seek(0);
  const TagLib::ByteVector head = stream.readBlock(12);
  stream.seek(0);
  return head.startsWith(first) && std::any_of(forms.begin(), forms.end(), [&](const char *form) {
           return head.mid(8) == TagLib::ByteVector(form);
         });
}

TagOutcome tagAiff(TagLib::IOStream &stream, const SongTags &tags, TagMode mode) {
  if (!isOfChunks(stream, "FORM", {"AIFF", "AIFC"})) return TagOutcome::Refused;
  TagLib::RIFF::AIFF::File file(&stream, false);
  if (!file.isValid()) return TagOutcome::Refused;
  if (!fillId3(*file.tag(), tags, mode)) return TagOutcome::Unchanged;
  return outcomeOf(file.save());
}

TagOutcome tagWav(TagLib::IOStream &stream, const SongTags &tags, TagMode mode) {
  if (!isOfChunks(stream, "RIFF", {"WAVE"})) return TagOutcome::Refused;
  TagLib::RIFF::WAV::File file(&stream, false);
  if (!file.isValid()) return TagOutcome::Refused;
  if (!fillId3(*file.ID3v2Tag(), tags, mode)) return TagOutcome::Unchanged;
  return outcomeOf(file.save(TagLib::RIFF::WAV::File::ID3v2, TagLib::RIFF::WAV::File::StripNone));
}

}  // namespace

TagOutcome writeTagsHere(int file, std::string_view extension, const SongTags &tags, TagMode mode) {
  // By the extension: what a file of noise might be is not to be guessed.
  constexpr std::array<
      std::pair<std::string_view, TagOutcome (*)(TagLib::IOStream &, const SongTags &, TagMode)>, 10>
      kWriters = {{{".mp3", tagMpeg},
                   {".m4a", tagMp4},
                   {".m4b", tagMp4},
                   {".m4p", tagMp4},
                   {".m4r", tagMp4},
                   {".m4v", tagMp4},
                   {".mp4", tagMp4},
                   {".aif", tagAiff},
                   {".aiff", tagAiff},
                   {".wav", tagWav}}};
  const std::string wanted = foldedText(extension);
  const auto *const found = std::find_if(kWriters.begin(), kWriters.end(),
                                         [&](const auto &writer) { return writer.first == wanted; });
  if (found == kWriters.end()) return TagOutcome::Refused;
  TagLib::FileStream stream(dup(file));
  if (!stream.isOpen() || stream.readOnly()) return TagOutcome::Refused;
  return found->second(stream, tags, mode);
}

}  // namespace zemhost
