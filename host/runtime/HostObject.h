#pragma once

// What every counted object of the host begins with, and the objects of registered classes: a header, then
// the plug-in's data block.

#include <cstddef>
#include <cstdint>

#include "sdk/HostTypes.h"

// The head of every host object; folder items begin with it too, so that one service releases both.
struct REALobjectStruct {
  int32_t references;
  void (*destroy)(REALobject self);
};

namespace zemhost {

// Called when the last reference to an object goes, before its data block does.
using ObjectEnd = void (*)(REALobject object, void *context);

// The distance from an object's address to its data block: the same for every class, aligned for any type.
extern const size_t kObjectDataOffset;

// A new object with one reference, owned by the caller, and a zero-filled data block. `end` may be null.
// Null when there is no memory.
REALobject newObject(size_t dataSize, ObjectEnd end, void *context);

// Adds a reference, or drops one; the last one ends the object. Null is allowed. Takes folder items as well.
void retainObject(REALobject object);
void releaseObject(REALobject object);

}  // namespace zemhost
