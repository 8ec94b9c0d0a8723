#include "zemhost/rescue/FileTags.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <taglib/audioproperties.h>
#include <taglib/fileref.h>
#include <taglib/tag.h>
#include <taglib/tfilestream.h>
#include <taglib/tpropertymap.h>
#include <taglib/wavfile.h>
#include <unistd.h>

#include "host/Error.h"
#include "player/FileBytes.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/rescue/Apart.h"

namespace zemhost {

namespace {

constexpr size_t kLongestAnswer = 1U << 20;

void set(Json &field, const TagLib::String &text) {
  const TagLib::String plain = text.stripWhiteSpace();
  if (!plain.isEmpty()) field = plain.to8Bit(true);
}

TagLib::String first(const TagLib::PropertyMap &properties, const char *name) {
  const TagLib::StringList values = properties.value(name);
  return values.isEmpty() ? TagLib::String() : values.front();
}

// Of the two kinds of tags in WAV files the library gives one alone, though it be empty.
const TagLib::Tag &tagOf(const TagLib::FileRef &reference) {
  const auto *const wav = dynamic_cast<const TagLib::RIFF::WAV::File *>(reference.file());
  if (wav != nullptr && !wav->hasID3v2Tag() && wav->hasInfoTag()) return *wav->InfoTag();
  return *reference.tag();
}

// What the library for tags finds, as JSON: it is found in another process than it is needed in.
Json foundIn(int file) {
  Json found = Json::object();
  // The library closes what it is given. It knows the kind of file by its content then.
  TagLib::FileStream stream(dup(file), true);
  const TagLib::FileRef reference(&stream);
  if (reference.isNull() || reference.tag() == nullptr) return found;
  const TagLib::Tag &tag = tagOf(reference);
  set(found["title"], tag.title());
  set(found["artist"], tag.artist());
  set(found["album"], tag.album());
  set(found["genre"], tag.genre());
  found["track"] = tag.track();
  found["year"] = tag.year();
  const TagLib::PropertyMap properties = reference.file()->properties();
  set(found["composer"], first(properties, "COMPOSER"));
  set(found["album_artist"], first(properties, "ALBUMARTIST"));
  found["disc"] = std::max(first(properties, "DISCNUMBER").toInt(), 0);  // "2" and "2/3" are 2
  if (const TagLib::AudioProperties *const audio = reference.audioProperties())
    found["duration"] = std::max(audio->lengthInMilliseconds(), 0);
  return found;
}

// As foundIn(), from a process of its own; null when nothing came of it.
Json foundApart(int file) {
  int ends[2] = {};
  if (pipe2(ends, O_CLOEXEC) != 0) throw HostError("tags: no pipe can be made", errno);
  carbon::Descriptor from(ends[0]);
  carbon::Descriptor to(ends[1]);
  std::string answer;
  const int status = runApart(
      [&] {
        player::writeAll(to.number(), jsonLine(foundIn(file)));
        return 0;
      },
      [&] {
        to = carbon::Descriptor();
        std::string piece(4096, '\0');
        while (answer.size() < kLongestAnswer) {
          const ssize_t got = read(from.number(), piece.data(), piece.size());
          if (got < 0 && errno == EINTR) continue;
          if (got <= 0) break;
          answer.append(piece, 0, static_cast<size_t>(got));
        }
        from = carbon::Descriptor();
      });
  return status == 0 ? Json::parse(answer, nullptr, false) : Json();
}

void take(const Json &found, const char *name, std::string &text) {
  const auto field = found.find(name);
  if (field != found.end() && field->is_string()) text = field->get<std::string>();
}

uint32_t numberIn(const Json &found, const char *name) {
  const auto field = found.find(name);
  return field != found.end() && field->is_number_unsigned() ? field->get<uint32_t>() : 0;
}

}  // namespace

FileTags readTags(const carbon::Descriptor &file, Song &song) {
  FileTags more;
  const Json found = foundApart(file.number());
  if (!found.is_object()) return more;
  take(found, "title", song.title);
  take(found, "artist", song.artist);
  take(found, "album", song.album);
  take(found, "genre", song.genre);
  take(found, "composer", song.composer);
  take(found, "album_artist", more.albumArtist);
  song.track = numberIn(found, "track");
  song.year = numberIn(found, "year");
  song.duration = numberIn(found, "duration");
  if (const uint32_t disc = numberIn(found, "disc"); disc != 0) song.facts.disc = disc;
  return more;
}

}  // namespace zemhost
