#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/Error.h"
#include "zemhost/rescue/NamePattern.h"
#include "zemhost/rescue/Progress.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {
namespace {

using testing::ElementsAre;

using Values = std::map<std::string, Json>;

const Values kSong = {{"title", "Salt on the Rail"},
                      {"artist", "Mira Solvang"},
                      {"albumartist", "Mira Solvang"},
                      {"album", "Northern Ferries"},
                      {"genre", "Folk"},
                      {"track", 2},
                      {"track_total", 9},
                      {"year", 2003}};

// The names of a song with these values and no others.
std::vector<std::string> namesOf(std::string_view text, const Values &values = kSong) {
  const NamePattern pattern(text);
  Row row;
  for (const std::string &field : pattern.fields())
    row.push_back(values.contains(field) ? values.at(field) : Json());
  auto [names, file] = pattern.names(row);
  names.push_back(safeName(file, kUnknownName));
  return names;
}

std::string refusal(const std::string &pattern) {
  try {
    const NamePattern read(pattern);
  } catch (const HostError &error) {
    return error.what();
  }
  return "";
}

TEST(NamePattern, UsualOneGivesArtistAlbumAndNumberedTitle) {
  EXPECT_THAT(namesOf(kUsualPattern), ElementsAre("Mira Solvang", "Northern Ferries", "02 Salt on the Rail"));
}

TEST(NamePattern, UsualOneSaysTheDiscWhereTheAlbumHasSeveral) {
  Values song = kSong;
  song["albumdisc"] = "1";
  EXPECT_EQ(namesOf(kUsualPattern, song).back(), "1-02 Salt on the Rail");
}

TEST(NamePattern, ShortAndLongNamesOfAFieldAreOne) {
  const NamePattern pattern("{title}-{tracks}-{track_total}");
  EXPECT_THAT(pattern.fields(), ElementsAre("title", "track_total"));
  EXPECT_THAT(namesOf("{title}-{artist}-{album}-{genre}-{composer}-{track}-{tracks}-{track_total}-{year}"),
              ElementsAre("Salt on the Rail-Mira Solvang-Northern Ferries-Folk-Unknown Composer-2-9-9-2003"));
}

TEST(NamePattern, EveryColumnOfAnExportThatIsOneValueIsAField) {
  size_t fields = 0;
  for (const ExportColumn &column : SongColumns::all()) {
    const std::string text = "{" + std::string(column.name) + "}";
    if (column.type == ColumnType::Texts) {
      EXPECT_THAT(refusal(text), testing::HasSubstr("there is no field " + text));
      continue;
    }
    EXPECT_THAT(NamePattern(text).fields(), ElementsAre(column.name));
    ++fields;
  }
  EXPECT_GT(fields, 80U);
}

TEST(NamePattern, NumbersTakeTheirWidth) {
  EXPECT_THAT(namesOf("x{track:3}x{track:04}x{year:02}x{{{track}}}"), ElementsAre("x  2x0002x2003x{2}"));
}

TEST(NamePattern, ValuesReadAsAPersonWouldSayThem) {
  EXPECT_THAT(namesOf("{date_added}/{last_played}/{explicit}/{skipped_in_shuffle}/{sound_check_db}/{checked}",
                      {{"date_added", "2004-08-09T10:11:12"},
                       {"last_played", "2005-01-02T03:04:05"},
                       {"explicit", true},
                       {"skipped_in_shuffle", true},
                       {"sound_check_db", -3.5},
                       {"checked", false}}),
              ElementsAre("2004-08-09", "2005-01-02", "explicit", "skipped in shuffle", "-3.5", "Unknown"));
}

TEST(NamePattern, EmptyTextsAreUnknownAndEmptyNumbersNothing) {
  EXPECT_THAT(namesOf(kUsualPattern, {}), ElementsAre("Unknown Artist", "Unknown Album", "Unknown Title"));
  EXPECT_THAT(namesOf("{genre}/{year}/{track:02}/{comment}x", {{"track", 0}, {"genre", "  "}}),
              ElementsAre("Unknown Genre", "Unknown", "Unknown", "x"));
}

TEST(NamePattern, ZeroIsSaidWhereItCounts) {
  EXPECT_THAT(namesOf("{song_index:03} {play_count:02} {rating}x",
                      {{"song_index", 0}, {"play_count", 0}, {"rating", 0}}),
              ElementsAre("000 00 x"));
}

TEST(NamePattern, FirstFieldThatIsNotEmptyCounts) {
  EXPECT_THAT(namesOf("{album_artist|artist}"), ElementsAre("Mira Solvang"));
  EXPECT_THAT(namesOf("{album_artist|artist}", {{"album_artist", "Choir"}, {"artist", "A"}}),
              ElementsAre("Choir"));
  EXPECT_THAT(namesOf("{disc|track:02}"), ElementsAre("02"));
  EXPECT_THAT(namesOf("{grouping|composer}"), ElementsAre("Unknown Composer"));
}

TEST(NamePattern, PartsInBracketsGoWithTheirFields) {
  EXPECT_THAT(namesOf("{title}[ ({year})]"), ElementsAre("Salt on the Rail (2003)"));
  EXPECT_THAT(namesOf("{title}[ ({year})]", {{"title", "T"}}), ElementsAre("T"));
  EXPECT_THAT(namesOf("[{disc}-{track:02} ]{title}"), ElementsAre("-02 Salt on the Rail"));
  EXPECT_THAT(namesOf("[{genre}]", {}), ElementsAre("Unknown"));
  EXPECT_THAT(namesOf("[[{title}]]"), ElementsAre("[Salt on the Rail]"));
}

TEST(NamePattern, FolderInBracketsGoesWithItsFields) {
  EXPECT_THAT(namesOf("[{genre}/]{title}"), ElementsAre("Folk", "Salt on the Rail"));
  EXPECT_THAT(namesOf("a[/b{genre}/{disc}]c", {{"genre", "G"}}), ElementsAre("a", "bG", "c"));
  EXPECT_THAT(namesOf("[{genre}/]{title}", {{"title", "T"}}), ElementsAre("T"));
}

TEST(NamePattern, TextsMakeNoFoldersAndLeadNowhere) {
  EXPECT_THAT(namesOf("{artist}/{title}", {{"artist", "../AC/DC"}, {"title", ".."}}),
              ElementsAre("_._AC_DC", "Unknown"));
  EXPECT_THAT(namesOf("[{genre}].[{disc}].x/.[{disc}].", {}), ElementsAre("_.x", "Unknown"));
}

TEST(NamePattern, UnknownFieldIsNamedWithTheKnownOnes) {
  EXPECT_THAT(refusal("{artist}/{mood}"),
              testing::StartsWith("the pattern \"{artist}/{mood}\": there is no field {mood}; the fields are "
                                  "{albumartist}, {albumdisc}, {song_index}, {track_id}, {title}, "));
}

TEST(NamePattern, FaultsAreNamed) {
  EXPECT_EQ(refusal("{title"), "the pattern \"{title\": there is a '{' without a '}' after it");
  EXPECT_EQ(refusal("title}"), "the pattern \"title}\": there is a '}' without a '{' before it");
  for (const char *empty : {"", "/{title}", "{title}/", "a//{title}"}) {
    EXPECT_THAT(refusal(empty), testing::EndsWith("a part between slashes is empty")) << empty;
  }
  EXPECT_THAT(refusal("../{title}"), testing::EndsWith("a part between slashes is \"..\""));
  EXPECT_THAT(refusal("{track:x}"), testing::EndsWith("x is not a width from 1 to 20"));
  EXPECT_THAT(refusal("{track:021}"), testing::EndsWith("021 is not a width from 1 to 20"));
  EXPECT_THAT(refusal("{track:}"), testing::EndsWith(" is not a width from 1 to 20"));
  EXPECT_THAT(refusal("{track:0}"), testing::EndsWith("0 is not a width from 1 to 20"));
  EXPECT_THAT(refusal("{title:02}"), testing::EndsWith("only numbers have a width, and {title} is none"));
  EXPECT_THAT(refusal("{track|title:02}"),
              testing::EndsWith("only numbers have a width, and {title} is none"));
  EXPECT_THAT(refusal("{title|}"), testing::HasSubstr("there is no field {};"));
  EXPECT_THAT(refusal("[{title}"), testing::EndsWith("there is a '[' without a ']' after it"));
  EXPECT_THAT(refusal("{title}]"), testing::EndsWith("there is a ']' without a '[' before it"));
  EXPECT_THAT(refusal("[a[{title}] ]"), testing::EndsWith("a '[' stands within '[' and ']'"));
  EXPECT_THAT(refusal("{title}[x]"), testing::EndsWith("there is no field between '[' and ']'"));
  EXPECT_THAT(refusal("{title}[{genre}/]"), testing::EndsWith("a part between slashes is empty"));
}

TEST(ProgressLine, TellsPartSongsRateAndTimeLeft) {
  EXPECT_EQ(progressLine(540, 1200, 2'400'000'000, 4'800'000'000, 200, 80),
            "[##########..........] 50 %  540 of 1200 songs  12.0 MB/s  3:20 left");
  EXPECT_EQ(progressLine(0, 5, 0, 1000, 10, 80), "[....................] 0 %  0 of 5 songs");
  EXPECT_EQ(progressLine(1, 5, 500, 1000, 0.1, 80), "[##########..........] 50 %  1 of 5 songs");
  EXPECT_EQ(progressLine(0, 0, 0, 0, 1, 80), "[####################] 100 %  0 of 0 songs");
}

TEST(ProgressLine, FitsTheTerminal) {
  EXPECT_EQ(progressLine(540, 1200, 2'400'000'000, 4'800'000'000, 200, 30), "[##########..........] 50 %  …");
}

}  // namespace
}  // namespace zemhost
