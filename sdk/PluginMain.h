#pragma once

#include <cstdint>

#include "platform/carbon/FileRecords.h"
#include "sdk/HostTypes.h"

// The plug-in's side of the host interface: the exported entry point and one wrapper for each host service.
//
// A wrapper looks its service up by name on its first call and keeps what it found; a look-up that failed is
// tried again by the next call. Calls come from the host's one scripting thread.

// The only export, called once by the host before anything else. `resolver` answers look-up names. Announces
// interface version 9, then registers the class through PluginEntry. A host without "ResolverPPC" or
// "RegisterPluginVersion" is not supported.
extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver);

// Registers the scripting class. Defined by the plug-in's class, called by REALPluginMain.
void PluginEntry();

// The function the host passed to REALPluginMain, and the one it answers for "ResolverPPC", through which
// every service is looked up. Null before REALPluginMain.
extern REALresolver gResolver;
extern REALresolver gResolverPPC;

// Registers one global method. Does nothing without the service.
void REALRegisterMethod(REALmethodDefinition *method);

// Registers the class; the record must stay where it is. For a host before version 5.9 the record's method
// list is first replaced by a three-word copy, even when the host turns out to lack the service. Does nothing
// else then.
void REALRegisterClass(REALclassDefinition *classRecord);

// A new host string of `length` bytes, owned by the caller; null without the service or when the host fails.
REALstring REALBuildString(const char *bytes, int32_t length);

// A new folder item for the file, owned by the caller; null for a specification that names nothing.
REALfolderItem REALFolderItemFromFSSpec(const FSSpec *spec);

// Fills *spec for the item and returns whether there is such a specification; false without the service.
bool REALFSSpecFromFolderItem(FSSpec *spec, REALfolderItem item);

// A new host string with the item's full path, owned by the caller; null without the service. The reference
// that Load owns is never given back.
REALstring REALpathFromFolderItem(REALfolderItem item);

// The host's version, such as 5.9; 0.0 without the service.
double REALGetRBVersion();

// The string's encoding code; 0 without the service.
uint32_t REALGetStringEncoding(REALstring string);

// Relabels the string, its bytes unchanged. Does nothing without the service.
void REALSetStringEncoding(REALstring string, uint32_t encoding);

// A new host string with the text converted, owned by the caller; null without the service.
REALstring REALConvertString(REALstring string, uint32_t encoding);

// Drop one reference. Null is allowed; nothing happens in a host that lacks the service.
void REALUnlockString(REALstring string);
void REALUnlockObject(REALobject object);

// The address of the plug-in's data inside a host object, at the offset the host wrote into the class record.
// Unchecked.
inline void *REALGetClassData(REALobject object, const REALclassDefinition *classRecord) {
  return reinterpret_cast<char *>(object) + classRecord->dataOffset;
}

// A new array with the first three words of each of `count` methods, for hosts before version 5.9; never
// released. Null when memory runs out.
REALmethodDefinitionV6 *ConvertCurrentMethodsToV6(const REALmethodDefinition *methods, intptr_t count);
