#include "plugin/RbiTunesDB.h"

int32_t gListSet = 0;

int32_t Get_Error(REALobject instance, intptr_t /*parameter*/) {
  const RbiTunesDBData *data = InstanceData(instance);
  return data == nullptr ? 0 : data->err;
}

int32_t Get_LibType(REALobject instance, intptr_t /*parameter*/) {
  const CiTunesDB *db = Database(instance);
  return db == nullptr ? -1 : db->LIBTYPE();
}

REALboolean Get_UseSJIS(REALobject instance, intptr_t /*parameter*/) {
  const CiTunesDB *db = Database(instance);
  return ToBoolean(db != nullptr && db->UseSJIS() != 0);
}

void Set_UseSJIS(REALobject instance, intptr_t /*parameter*/, REALboolean value) {
  CiTunesDB *db = Database(instance);
  if (db != nullptr) db->useSJIS = value == REALboolean::False ? 0 : 1;
}

int32_t Get_ResultEncode(REALobject instance, intptr_t /*parameter*/) {
  const RbiTunesDBData *data = InstanceData(instance);
  return data == nullptr ? 0 : static_cast<int32_t>(data->ecd);
}

void Set_ResultEncode(REALobject instance, intptr_t /*parameter*/, int32_t value) {
  RbiTunesDBData *data = InstanceData(instance);
  if (data != nullptr) data->ecd = static_cast<uint32_t>(value);
}

REALstring Get_VolumeName(REALobject instance, intptr_t /*parameter*/) {
  const CiTunesDB *db = Database(instance);
  if (db == nullptr || db->VOLNAME().empty()) return nullptr;
  return REALBuildString(db->VOLNAME().data(), static_cast<int32_t>(db->VOLNAME().size()));
}

REALboolean Get_ZeroBasePlayerlist(REALobject /*instance*/, intptr_t /*parameter*/) {
  return ToBoolean(gListSet != 0);
}

void Set_ZeroBasePlayerlist(REALobject /*instance*/, intptr_t /*parameter*/, REALboolean value) {
  gListSet = value == REALboolean::False ? 0 : 1;
}
