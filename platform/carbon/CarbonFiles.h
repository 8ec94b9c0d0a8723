#pragma once

// CarbonFiles: the subset of the Mac's File Manager, Memory Manager and CoreFoundation strings that the
// plug-in and its host use, over POSIX. Signatures are those of the Mac's own headers. Plug-in and host must
// link the same shared library, since an FSSpec made on one side has to name the same file on the other.
//
// Mac paths are colon-separated with the volume name first (`iPod:iPod_Control:iTunes:iTunesDB`); text is
// UTF-8; a '/' in a Mac name is a ':' on disk, and the reverse.

#include <cstddef>
#include <cstdint>

#include "sdk/HostTypes.h"

#define CARBON_EXPORT __attribute__((visibility("default")))

extern "C" {

using OSErr = int16_t;
using OSStatus = int32_t;
using Boolean = unsigned char;
using Ptr = char *;
using Size = long;
using ConstStr255Param = const unsigned char *;
using CFIndex = long;
using CFStringEncoding = uint32_t;
using CFTypeRef = const void *;
using CFAllocatorRef = const struct __CFAllocator *;
using CFStringRef = const struct __CFString *;

constexpr OSErr noErr = 0;
constexpr OSErr nsvErr = -35;               // no such volume
constexpr OSErr bdNamErr = -37;             // a name that is empty or longer than 63 bytes
constexpr OSErr fnfErr = -43;               // the parent exists, the file does not
constexpr OSErr dirNFErr = -120;            // a directory on the way is missing
constexpr OSStatus pathTooLongErr = -2110;  // the path and its terminator do not fit the buffer

constexpr CFStringEncoding kCFStringEncodingUnicode = 0x0100;
constexpr CFStringEncoding kCFStringEncodingASCII = 0x0600;
constexpr CFStringEncoding kCFStringEncodingShiftJIS = 0x0A01;
constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;

// The default allocator, as the Mac spells it: null.
constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;

// Fills *spec for the Pascal-string path or name in fileName (at most 255 bytes). With vRefNum 0 and dirID 0
// the name is a full path. Returns noErr, fnfErr (the specification is filled all the same), nsvErr, dirNFErr
// or bdNamErr; on any other result than the first two *spec is left alone.
CARBON_EXPORT OSErr FSMakeFSSpec(int16_t vRefNum, int32_t dirID, ConstStr255Param fileName, FSSpec *spec);

// Makes a reference to an existing file or directory. Returns noErr, or the error of FSMakeFSSpec with *ref
// naming nothing.
CARBON_EXPORT OSErr FSpMakeFSRef(const FSSpec *spec, FSRef *ref);

// Writes the reference's POSIX path, NUL-terminated UTF-8, into the buffer of bufferSize bytes. Returns
// noErr, fnfErr for a reference that names nothing, or pathTooLongErr; the buffer is then left alone.
CARBON_EXPORT OSStatus FSRefMakePath(const FSRef *ref, uint8_t *buffer, uint32_t bufferSize);

// A new block of byteCount bytes from malloc, or null. Never released by the plug-in.
CARBON_EXPORT Ptr NewPtr(Size byteCount);

// A new string of the given bytes, owned by the caller (CFRelease); null when they are not valid text of the
// encoding, or the encoding is not one of the four above. isExternalRepresentation allows a byte-order mark.
CARBON_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const uint8_t *bytes,
                                                  CFIndex byteCount, CFStringEncoding encoding,
                                                  Boolean isExternalRepresentation);

// The number of UTF-16 units of the string.
CARBON_EXPORT CFIndex CFStringGetLength(CFStringRef string);

// The most bytes that `length` UTF-16 units can take in the encoding, without a terminator.
CARBON_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

// Writes the text and a NUL into the buffer. Returns 0, with the buffer's contents unspecified, when they do
// not fit or the text has no form in the encoding.
CARBON_EXPORT Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize,
                                         CFStringEncoding encoding);

// Drops one reference; the object goes with the last. Null is not allowed.
CARBON_EXPORT void CFRelease(CFTypeRef object);

// Beyond the Mac's calls, for hosts.

// Declares a mounted volume: its Mac name (1 to 27 bytes are usual, at most 63) and the directory that is its
// root. A second declaration of a name replaces the first. Returns noErr, bdNamErr, or fnfErr when the
// directory does not exist.
CARBON_EXPORT OSErr CarbonMountVolume(const char *name, const char *posixRoot);

// Fills *spec for a POSIX path, on the volume with the longest matching root. Results as FSMakeFSSpec.
CARBON_EXPORT OSErr CarbonSpecFromPath(const char *posixPath, FSSpec *spec);

// Writes the colon-separated full path, NUL-terminated UTF-8, into the buffer. Returns noErr, fnfErr for a
// specification that names nothing, or pathTooLongErr.
CARBON_EXPORT OSStatus CarbonPathFromSpec(const FSSpec *spec, char *buffer, uint32_t size);

}  // extern "C"
