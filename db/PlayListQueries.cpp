#include "db/CiTunesDB.h"

int32_t CiTunesDB::PlayListType(int32_t p) const {
  return HasPlayList(p) ? plays[static_cast<size_t>(p)].GetType() : 0;
}

int32_t CiTunesDB::PlayListTypeII(int32_t p) const {
  return HasPlayList(p) ? plays[static_cast<size_t>(p)].GetTypeII() : 0;
}

const songInfo &CiTunesDB::PlayListNameInfo(int32_t p) const {
  return HasPlayList(p) ? plays[static_cast<size_t>(p)].GetTitleInfo() : errSongInfo;
}

const refidx *CiTunesDB::Entry(int32_t p, int32_t i) const {
  if (!HasPlayList(p) || i < 0) return nullptr;
  const std::vector<refidx> &entries = plays[static_cast<size_t>(p)].refnum;
  return static_cast<size_t>(i) < entries.size() ? &entries[static_cast<size_t>(i)] : nullptr;
}

refidx *CiTunesDB::Entry(int32_t p, int32_t i) {
  return const_cast<refidx *>(static_cast<const CiTunesDB *>(this)->Entry(p, i));
}

bool CiTunesDB::PLR(int32_t p, int32_t i) const { return Entry(p, i) == nullptr; }

int32_t CiTunesDB::FindRefIdx(int32_t t) const {
  const int32_t index = songs.FindID(t);
  return index < 0 ? 0 : index;
}
