#include "db/SongTable.h"

#include <new>

void SongTable::IndexIDs() const {
  if (changes_ != TrackID::Changes()) {
    ForgetIDs();
    changes_ = TrackID::Changes();
  }
  if (indexed_ == 0 && !songs_.empty()) ids_.Reserve(songs_.size());
  for (; indexed_ < songs_.size(); ++indexed_) ids_.Add(songs_[indexed_].id, static_cast<int32_t>(indexed_));
}

void SongTable::SetID(size_t i, int32_t id) {
  const int32_t old = songs_[i].id;
  if (old == id) return;
  songs_[i].id.SetUncounted(id);
  if (i >= indexed_ || changes_ != TrackID::Changes()) return;
  try {
    const auto index = static_cast<int32_t>(i);
    if (ids_.Remove(old) != 0 && ids_.Find(old) == index) {
      size_t next = i + 1;
      while (songs_[next].id != old) ++next;
      ids_.SetLowest(old, static_cast<int32_t>(next));
    }
    ids_.Add(id, index);
  } catch (const std::bad_alloc &) {
    ForgetIDs();
  }
}
