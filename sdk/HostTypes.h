#pragma once

// The binary layout that the plug-in and its host share. Nothing else in the tree may restate it;
// a port to a particular host release changes this header only.
//
// Conventions of the interface, in the version below:
//  1. Plain C records with the platform's natural alignment, and the C calling convention.
//  2. A "word" is pointer-sized (intptr_t): 4 bytes on 32-bit builds, which is the classic layout byte for
//     byte, and 8 on 64-bit builds.
//  3. Integer and Boolean cross the boundary as int32_t. A Boolean is 0 or 1, but passes as a full 32-bit
//     value, so that other values can be seen. A null REALstring is the no-value string, a null
//     REALfolderItem is nil.
//  4. A method's C function takes the object first, then the declared arguments in order. A property getter
//     is `T get(REALobject, intptr_t parameter)`, a setter `void set(REALobject, intptr_t parameter, T)`.
//  5. A string or folder item that a service or a method returns carries one reference, which the caller
//     owns; arguments are borrowed. One reference is never given back: that to the path which Load asks for.

#include <cstdint>

// What a plug-in announces, and states in its class record.
constexpr int32_t kInterfaceVersion = 9;

// Hosts from this version on read REALmethodDefinition entries in class records, those before it
// REALmethodDefinitionV6 entries.
constexpr double kFirstVersionWithFourWords = 5.9;

extern "C" {

struct REALobjectStruct;
struct REALfolderItemStruct;
struct REALstringStruct;

using REALobject = REALobjectStruct *;
using REALfolderItem = REALfolderItemStruct *;
using REALstring = REALstringStruct *;

// A Boolean: 0 or 1, though host code may pass anything.
enum class REALboolean : int32_t { False = 0, True = 1 };

// A slot for any function; the user casts it to the real signature before calling.
using REALproc = void (*)();

// The host's string. The first byte at mPrivateStringData is a length byte (the low 8 bits of the length, 255
// when the text is longer); the characters follow it. Text encodings are Mac OS encoding values. A string
// tagged 0x0100 holds UTF-16 with the high byte first on every machine, unless it begins with a byte-order
// mark.
struct REALstringStruct {
  int32_t mPrivateUsageCount;
  uint8_t *mPrivateStringData;
  int32_t mPrivateAllocLength;
  int32_t mPrivateLength;
  uint32_t mEncoding;

  // The number of characters (bytes) of a host string; 0 for the null string.
  static int32_t Length(const REALstringStruct *string) {
    return string == nullptr ? 0 : string->mPrivateLength;
  }

  // The first character, one byte past the length byte. Never null: the null string gives a constant "".
  // Owned by the string.
  static const char *CString(const REALstringStruct *string) {
    return string == nullptr ? "" : reinterpret_cast<const char *>(string->mPrivateStringData + 1);
  }
};

// One method of a class. `setter` is null and `flags` 0 in method tables.
struct REALmethodDefinition {
  REALproc function;
  REALproc setter;
  const char *declaration;
  intptr_t flags;
};

// The form that hosts before version 5.9 read: the first three words only.
struct REALmethodDefinitionV6 {
  REALproc function;
  REALproc setter;
  const char *declaration;
};

struct REALproperty {
  const char *group;
  const char *name;
  const char *type;
  intptr_t flags;
  REALproc getter;
  REALproc setter;
  intptr_t parameter;
  const void *editor;
};

// A class as it is registered. The host writes `dataOffset` at registration: the distance in bytes from a
// host object's address to the plug-in's data block inside it, which is aligned for any type and handed over
// zero-filled. A host before version 5.9 finds REALmethodDefinitionV6 entries at `methods`.
struct REALclassDefinition {
  intptr_t version;
  const char *name;
  const char *superName;
  intptr_t dataSize;
  intptr_t dataOffset;
  REALproc constructor;
  REALproc destructor;
  REALproperty *properties;
  intptr_t propertyCount;
  REALmethodDefinition *methods;
  intptr_t methodCount;
  void *events;
  intptr_t eventCount;
  void *constants;
  intptr_t constantCount;
};

// Answers a look-up name with a function, or null when the name is unknown.
using REALresolver = void *(*)(const char *name);

}  // extern "C"
