#include <algorithm>
#include <cstdio>
#include <new>

#include "platform/FileReference.h"
#include "platform/carbon/CarbonFiles.h"
#include "plugin/RbiTunesDB.h"

namespace {

constexpr int16_t kNoError = 0;
constexpr int16_t kRejected = 1;
constexpr int16_t kNoFile = -50;
constexpr int16_t kNoMemory = -108;

// The volume's name of an iPod is what stands before the folder of its database; a file kept elsewhere gives
// its whole path.
void AppendVolumeOfPath(ByteString &volume, REALfolderItem item) {
  REALstring path = REALpathFromFolderItem(item);  // the one reference that is never given back
  if (path == nullptr) return;
  const std::string_view bytes(REALstringStruct::CString(path),
                               static_cast<size_t>(REALstringStruct::Length(path)));
  volume.Append(bytes.substr(0, bytes.find(":iPod_Control")));
}

void AppendName(ByteString &volume, const FSSpec &spec) {
  const size_t length = std::min<size_t>(spec.name[0], sizeof spec.name - 1);
  volume.Append({reinterpret_cast<const char *>(spec.name + 1), length});
}

}  // namespace

void ZemRbiTunesDB_ZemRbiTunesDB(REALobject instance) {
  RbiTunesDBData *data = InstanceData(instance);
  if (data == nullptr) return;
  data->dbf = nullptr;
  data->ecd = kCFStringEncodingUTF8;
  data->db = new (std::nothrow) CiTunesDB;
  if (data->db == nullptr) data->err = kNoMemory;
}

void ZemRbiTunesDB_Destructor(REALobject instance) {
  RbiTunesDBData *data = InstanceData(instance);
  if (data == nullptr) return;
  delete data->db;
  data->db = nullptr;
}

REALboolean ZemRbiTunesDB_LoadiTunesDB(REALobject instance, REALfolderItem item) {
  RbiTunesDBData *data = InstanceData(instance);
  if (data == nullptr || data->db == nullptr || data->dbf != nullptr) return REALboolean::False;
  data->err = kNoFile;
  if (item == nullptr) return REALboolean::False;
  data->dbf = item;
  FSSpec spec = {};
  if (!REALFSSpecFromFolderItem(&spec, item)) return REALboolean::False;
  FILE *file = FileReference(spec).fopen("rb");
  if (file == nullptr) return REALboolean::False;
  // The database is read through a window. A second buffer below it would make two reads of each.
  std::setvbuf(file, nullptr, _IONBF, 0);
  const int32_t rc = data->db->LoadiTunesDB(file);
  std::fclose(file);
  data->err = kRejected;
  data->db->vln = {};
  if (rc != 1) return REALboolean::False;
  if (data->db->LIBTYPE() != 0) {
    AppendVolumeOfPath(data->db->vln, item);
  } else {
    AppendName(data->db->vln, spec);
  }
  data->err = kNoError;
  return REALboolean::True;
}

int32_t ZemRbiTunesDB_CountSongs(REALobject instance) {
  const CiTunesDB *db = Database(instance);
  return db == nullptr ? 0 : static_cast<int32_t>(db->songs.size());
}

int32_t ZemRbiTunesDB_CountPlayLists(REALobject instance) {
  const CiTunesDB *db = Database(instance);
  return db == nullptr ? 0 : static_cast<int32_t>(db->plays.size()) - gListSet;
}

int32_t ZemRbiTunesDB_CountPlayListSongs(REALobject instance, int32_t playlist) {
  const CiTunesDB *db = Database(instance);
  const int32_t p = PlayNum(playlist);
  if (db == nullptr || p < 0 || static_cast<size_t>(p) >= db->plays.size()) return 0;
  return db->plays[static_cast<size_t>(p)].CountSongs();
}
