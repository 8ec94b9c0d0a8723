#include "db/CiTunesDB.h"

int32_t CiTunesDB::PlayListType(int32_t p) const {
  return HasPlayList(p) ? plays[static_cast<size_t>(p)].GetType() : 0;
}

int32_t CiTunesDB::PlayListTypeII(int32_t p) const {
  return HasPlayList(p) ? plays[static_cast<size_t>(p)].GetTypeII() : 0;
}

const songInfo &CiTunesDB::PlayListNameCell(int32_t p) const {
  return HasPlayList(p) ? plays[static_cast<size_t>(p)].GetTitleInfo() : errSongInfo;
}

bool CiTunesDB::PLR(int32_t p, int32_t i) const { return Entry(p, i) == nullptr; }
