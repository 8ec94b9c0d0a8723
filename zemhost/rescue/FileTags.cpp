#include "zemhost/rescue/FileTags.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <taglib/audioproperties.h>
#include <taglib/fileref.h>
#include <taglib/tag.h>
#include <taglib/tfilestream.h>
#include <taglib/tpropertymap.h>
#include <unistd.h>

namespace zemhost {

namespace {

void set(std::string &field, const TagLib::String &text) {
  const TagLib::String plain = text.stripWhiteSpace();
  if (!plain.isEmpty()) field = plain.to8Bit(true);
}

TagLib::String first(const TagLib::PropertyMap &properties, const char *name) {
  const TagLib::StringList values = properties.value(name);
  return values.isEmpty() ? TagLib::String() : values.front();
}

// "2" and "2/3" are 2.
std::optional<uint32_t> numberIn(const TagLib::String &text) {
  const int number = text.toInt();
  return number > 0 ? std::optional(static_cast<uint32_t>(number)) : std::nullopt;
}

}  // namespace

FileTags readTags(const carbon::Descriptor &file, Song &song) {
  FileTags more;
  // The library closes what it is given. It knows the kind of file by its content then.
  TagLib::FileStream stream(dup(file.number()), true);
  const TagLib::FileRef reference(&stream);
  if (reference.isNull() || reference.tag() == nullptr) return more;
  const TagLib::Tag &tag = *reference.tag();
  set(song.title, tag.title());
  set(song.artist, tag.artist());
  set(song.album, tag.album());
  set(song.genre, tag.genre());
  song.track = tag.track();
  song.year = tag.year();
  const TagLib::PropertyMap properties = reference.file()->properties();
  set(song.composer, first(properties, "COMPOSER"));
  set(more.albumArtist, first(properties, "ALBUMARTIST"));
  song.facts.disc = numberIn(first(properties, "DISCNUMBER"));
  if (const TagLib::AudioProperties *const audio = reference.audioProperties())
    song.duration = static_cast<uint32_t>(std::max(audio->lengthInMilliseconds(), 0));
  return more;
}

}  // namespace zemhost
