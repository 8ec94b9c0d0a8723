#pragma once

// CarbonFiles: the subset of the Mac's File Manager, Memory Manager and CoreFoundation strings that the
// plug-in and its host use, over POSIX. Signatures are those of the Mac's own headers. Plug-in and host must
// link the same shared library, since an FSSpec made on one side has to name the same file on the other.
//
// Mac paths are colon-separated with the volume name first (`iPod:iPod_Control:iTunes:iTunesDB`). A path that
// begins with a colon, and a name without any, start at the directory that vRefNum and dirID name; an empty
// component (`::`) goes up to the parent; one colon at the end is allowed. Text is UTF-8 and a name is 1 to
// 63 bytes long; a '/' in a Mac name is a ':' on disk, and the reverse. The names "." and "..", and names
// with a NUL or a colon in them, cannot stand on disk and are bad names. A name is matched exactly first and
// then without regard to case (the letters of the Latin, Greek, Cyrillic and Armenian scripts, full-width
// Latin and the Roman numerals; composed and decomposed accents stay different); the name on disk is the one
// kept.
//
// Volumes, by name: those that CarbonMountVolume declared; the directories directly under /Volumes, each
// /media/*, each /run/media/* and /mnt; and the boot volume `System`, which is /. A directory identifier is
// given out once for each directory of a parent and never again. It follows a directory that is renamed
// within its parent, and gives dirNFErr when the directory was removed, moved elsewhere or replaced by
// another one.
//
// No call throws. A null pointer where a record or buffer is needed gives paramErr, and memory that runs out
// memFullErr. Everything belongs to one thread, as the host's calls do.

#include <cstddef>
#include <cstdint>

#include "platform/carbon/FileRecords.h"

#define CARBON_EXPORT __attribute__((visibility("default")))

extern "C" {

struct CarbonAllocator;
struct CarbonString;

using OSErr = int16_t;
using OSStatus = int32_t;
using Boolean = unsigned char;
using Ptr = char *;
using Size = long;
using ConstStr255Param = const unsigned char *;
using CFIndex = long;
using CFStringEncoding = uint32_t;
using CFTypeRef = const void *;
using CFAllocatorRef = const CarbonAllocator *;
using CFStringRef = const CarbonString *;

constexpr OSErr noErr = 0;
constexpr OSErr nsvErr = -35;               // no such volume
constexpr OSErr bdNamErr = -37;             // a name that is empty, over 63 bytes, or cannot stand on disk
constexpr OSErr fnfErr = -43;               // the parent exists, the file does not
constexpr OSErr paramErr = -50;             // a null pointer
constexpr OSErr memFullErr = -108;          // no memory, or no volume reference left
constexpr OSErr dirNFErr = -120;            // a directory on the way is missing
constexpr OSStatus pathTooLongErr = -2110;  // the path and its terminator do not fit the buffer

constexpr CFStringEncoding kCFStringEncodingUnicode = 0x0100;
constexpr CFStringEncoding kCFStringEncodingASCII = 0x0600;
constexpr CFStringEncoding kCFStringEncodingShiftJIS = 0x0A01;  // known by name; not converted here
constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;

constexpr CFIndex kCFNotFound = -1;

// The default allocator, as the Mac spells it: null.
constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;

// Fills *spec for the Pascal-string path or name in fileName (at most 255 bytes). With vRefNum and dirID 0
// the name is a full path and begins with a volume's name; with dirID 0 alone the start is the volume's root,
// with vRefNum 0 alone it is on the boot volume. Returns noErr, fnfErr (the specification is filled all the
// same), nsvErr, dirNFErr or bdNamErr; on any other result than the first two *spec is left alone. A volume's
// root is {vRefNum, 1, the volume's name}; `:` is the directory itself.
CARBON_EXPORT OSErr FSMakeFSSpec(int16_t vRefNum, int32_t dirID, ConstStr255Param fileName, FSSpec *spec);

// Makes a reference to an existing file or directory. Returns noErr, or the error of FSMakeFSSpec with *ref
// naming nothing (all zero). The reference owns nothing and needs no release.
CARBON_EXPORT OSErr FSpMakeFSRef(const FSSpec *spec, FSRef *ref);

// Writes the reference's POSIX path, NUL-terminated, in the bytes of the disk, into the buffer of bufferSize
// bytes. Returns noErr, fnfErr for a reference that names nothing (any more), or pathTooLongErr; the buffer
// is then left alone. The path may be longer than the system's own calls take in one piece.
CARBON_EXPORT OSStatus FSRefMakePath(const FSRef *ref, uint8_t *buffer, uint32_t bufferSize);

// A new block of byteCount bytes from malloc, or null when there is no memory or the count is negative.
// The plug-in never releases one.
CARBON_EXPORT Ptr NewPtr(Size byteCount);

// A new string of the given bytes, owned by the caller (CFRelease); null when they are not valid text of the
// encoding, the encoding is not ASCII, UTF-8 or UTF-16 (kCFStringEncodingUnicode), or there is no memory.
// UTF-16 is in the machine's byte order. With isExternalRepresentation a leading byte-order mark is left out
// of the text and followed, and UTF-16 without one has its high byte first.
CARBON_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const uint8_t *bytes,
                                                  CFIndex byteCount, CFStringEncoding encoding,
                                                  Boolean isExternalRepresentation);

// The number of UTF-16 units of the string; 0 for null.
CARBON_EXPORT CFIndex CFStringGetLength(CFStringRef string);

// The most bytes that `length` UTF-16 units can take in the encoding, without a terminator. kCFNotFound for a
// negative length, a result that a CFIndex cannot hold, or an encoding that is not one of those three.
CARBON_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

// Writes the text in an 8-bit encoding (ASCII or UTF-8) and a NUL into the buffer, and returns 1. Returns 0
// and leaves the buffer alone when they do not fit its bufferSize bytes, the text has no form in the
// encoding, or the string is null.
CARBON_EXPORT Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize,
                                         CFStringEncoding encoding);

// Releases a string that CFStringCreateWithBytes made; null is allowed.
CARBON_EXPORT void CFRelease(CFTypeRef object);

// Beyond the Mac's calls, for hosts.

// Declares a mounted volume: its Mac name (1 to 27 bytes are usual, at most 63) and the directory that is its
// root. A second declaration of a name replaces the first, whose specifications then give nsvErr unless the
// root is the same. Returns noErr, bdNamErr, or fnfErr when the directory does not exist.
CARBON_EXPORT OSErr CarbonMountVolume(const char *name, const char *posixRoot);

// Fills *spec for a POSIX path, on the volume with the longest matching root. Symbolic links are followed in
// the directory part and in a path that is a directory; a file keeps the name it was given by. A relative
// path starts at the working directory. Results as FSMakeFSSpec.
CARBON_EXPORT OSErr CarbonSpecFromPath(const char *posixPath, FSSpec *spec);

// Writes the colon-separated full path, NUL-terminated, into the buffer; the file need not exist, but its
// directory must. A volume's root is its name and a colon. Returns noErr, fnfErr for a specification that
// names nothing, or pathTooLongErr; the buffer is then left alone.
CARBON_EXPORT OSStatus CarbonPathFromSpec(const FSSpec *spec, char *buffer, uint32_t size);

}  // extern "C"
