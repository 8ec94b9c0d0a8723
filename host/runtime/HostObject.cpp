#include "host/runtime/HostObject.h"

#include <cstdlib>
#include <limits>
#include <new>

#include "host/runtime/LiveHandles.h"

namespace zemhost {
namespace {

struct alignas(std::max_align_t) ClassObject : REALobjectStruct {
  ObjectEnd end;
  void *context;
};

void destroyClassObject(REALobject self) {
  auto *object = static_cast<ClassObject *>(self);
  if (object->end != nullptr) object->end(self, object->context);
  removeHandle(self, &LiveHandles::objects);
  std::free(object);
}

}  // namespace

const size_t kObjectDataOffset = sizeof(ClassObject);

REALobject newObject(size_t dataSize, ObjectEnd end, void *context) {
  if (dataSize > std::numeric_limits<size_t>::max() - sizeof(ClassObject)) return nullptr;
  void *block = std::calloc(1, sizeof(ClassObject) + dataSize);
  if (block == nullptr) return nullptr;
  auto *object = new (block) ClassObject{{1, destroyClassObject}, end, context};
  addHandle(static_cast<REALobject>(object), &LiveHandles::objects);
  return object;
}

void retainObject(REALobject object) {
  if (object != nullptr && isLiveHandle(object)) ++object->references;
}

void releaseObject(REALobject object) {
  if (object == nullptr || !isLiveHandle(object)) return;
  if (object->references > 1) {
    --object->references;
  } else {
    object->destroy(object);  // at a count of one, so that a class destructor may pass the object around
  }
}

}  // namespace zemhost
