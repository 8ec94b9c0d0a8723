#include "plugin/RbiTunesDB.h"

int32_t ZemRbiTunesDB_GetPlayListType(REALobject instance, int32_t playlist, int32_t reqType) {
  const CiTunesDB *db = Database(instance);
  if (db == nullptr) return 0;
  const int32_t p = PlayNum(playlist);
  return reqType == 0 ? db->PlayListType(p) : db->PlayListTypeII(p);
}

REALboolean ZemRbiTunesDB_GetPlaySong(REALobject instance, int32_t playlist, int32_t index) {
  const CiTunesDB *db = LoadedDatabase(instance);
  if (db == nullptr) return REALboolean::False;
  const refidx *entry = db->Entry(PlayNum(playlist), index);
  return ToBoolean(entry == nullptr || entry->ply == 0);
}

void ZemRbiTunesDB_SetPlaySong(REALobject instance, int32_t playlist, int32_t index, REALboolean play) {
  CiTunesDB *db = Database(instance);
  refidx *entry = db == nullptr ? nullptr : db->Entry(PlayNum(playlist), index);
  if (entry == nullptr) return;
  // The top bit of -(play XOR 1): 0 for True, 1 for False, and fixed for every other value a host may pass.
  entry->ply = static_cast<int32_t>((0U - (static_cast<uint32_t>(play) ^ 1U)) >> 31);
}

int32_t ZemRbiTunesDB_GetFlags(REALobject instance, int32_t playlist, int32_t index) {
  const CiTunesDB *db = Database(instance);
  const refidx *entry = db == nullptr ? nullptr : db->Entry(PlayNum(playlist), index);
  return entry == nullptr ? 0 : entry->flg;
}

void ZemRbiTunesDB_SetFlags(REALobject instance, int32_t playlist, int32_t index, int32_t flags) {
  CiTunesDB *db = Database(instance);
  refidx *entry = db == nullptr ? nullptr : db->Entry(PlayNum(playlist), index);
  if (entry != nullptr) entry->flg = flags;
}

REALboolean ZemRbiTunesDB_CompareSongObject(REALobject instance, int32_t object, int32_t playlist,
                                            int32_t indexA, int32_t indexB) {
  const CiTunesDB *db = Database(instance);
  if (db == nullptr) return REALboolean::False;
  constexpr int32_t kTexts = 1;
  if (playlist >= 0) {
    const auto song = [&](int32_t position) {
      const refidx *entry = db->Entry(PlayNum(playlist), position);
      return entry == nullptr ? 0 : entry->idx;
    };
    indexA = song(indexA);
    indexB = song(indexB);
  }
  return ToBoolean(db->CompareSongsObjects(object, indexA, indexB, kTexts));
}
