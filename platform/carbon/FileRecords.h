#pragma once

// The File Manager's records, which the host and the plug-in hand each other: plain C with natural alignment.

#include <cstdint>

extern "C" {

// Names a file or folder that may not exist: a mounted volume, a folder on it (2 is the volume's root), and a
// Pascal string of up to 63 bytes: a length byte, then the name.
struct FSSpec {
  int16_t vRefNum;
  int32_t parID;
  uint8_t name[64];
};

// Names a file or folder that exists. Only the file manager reads what it holds.
struct FSRef {
  uint8_t hidden[80];
};

}  // extern "C"
