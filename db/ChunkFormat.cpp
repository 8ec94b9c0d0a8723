#include "db/ChunkFormat.h"

#include "db/ByteOrder.h"

int32_t LibTypeOf(const fsbbStruct &fsbb) {
  const uint16_t code = HalfTag(fsbb.code[0], fsbb.code[1]);
  if (code == HalfTag("bd")) return 1;
  return code == HalfTag("fm") && HalfTag(fsbb.pad[0], fsbb.pad[1]) == HalfTag("hd") ? 0 : -1;
}
