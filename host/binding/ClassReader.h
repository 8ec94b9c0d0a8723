#pragma once

// Reads the records that a plug-in registers.

#include "host/binding/ClassInfo.h"
#include "sdk/HostTypes.h"

namespace zemhost {

// Reads a class record. With threeWords its method list has three words an entry, as hosts before version
// 5.9 read it. Throws HostError naming the class and the entry when a name, function or declaration is
// missing or cannot be read, when a count or size is negative, or when two methods or properties cannot be
// told apart.
ClassInfo readClass(const REALclassDefinition &record, bool threeWords);

// Reads the first three words of one method entry. `owner` says whose it is, for the message.
MethodInfo readMethod(REALproc function, const char *declaration, const std::string &owner);

}  // namespace zemhost
