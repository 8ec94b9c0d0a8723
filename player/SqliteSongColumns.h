#pragma once

// The columns of the tables of songs, and what each is of a song.

#include <cstdint>
#include <span>
#include <string>

#include "player/SqliteRecords.h"
#include "player/SqliteTables.h"

namespace player {

// What the item says beside a song's own record: IDs of names in other tables.
struct SqliteItem {
  SqliteSong song;
  std::string description, longDescription;
  int64_t album = 0, trackArtist = 0, artist = 0, composer = 0, genre = 0, category = 0;
};

std::span<const SqliteColumn<SqliteItem>> itemColumns();  // of item

// Of the tables avformat_info, video_info, podcast_info, store_info and item_stats, for a song of them.
std::span<const SqliteColumn<SqliteSong>> formatColumns();
std::span<const SqliteColumn<SqliteSong>> videoColumns();
std::span<const SqliteColumn<SqliteSong>> podcastColumns();
std::span<const SqliteColumn<SqliteSong>> storeColumns();
std::span<const SqliteColumn<SqliteSong>> statColumns();

// Texts whose numbers in other databases are needed beside a column of their own.
constexpr uint32_t kCategoryText = 9;
constexpr uint32_t kDescriptionText = 14;

// Adds a text with its number in other databases, unless it is empty.
void addText(SqliteSong &song, uint32_t number, std::string text);

}  // namespace player
