// How a stored text is handed to host code.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tests/model/Records.h"

namespace model {

// A host string: its bytes and the code of their encoding.
struct HostText {
  std::string bytes{};
  uint32_t encoding = 0;

  friend bool operator==(const HostText &, const HostText &) = default;
};

// What the model asks of its host. A missing value stands for the null string or nil.
class Host {
 public:
  Host() = default;
  Host(const Host &) = delete;
  Host &operator=(const Host &) = delete;
  virtual ~Host() = default;

  // A new string of the bytes, with the code that a host gives a string it knows nothing about.
  virtual std::optional<HostText> Build(const std::string &bytes) = 0;
  // The text in another encoding.
  virtual std::optional<HostText> Convert(const HostText &text, uint32_t encoding) = 0;
  // The code that the host reports for the null string.
  virtual uint32_t EncodingOfNoString() = 0;
  // The folder item of a colon-separated path of at most 255 bytes, in any form that tells items apart.
  virtual std::optional<std::string> ItemOfPath(const std::string &path) = 0;
  // The path that the host gives for the folder item of a colon-separated path.
  virtual std::optional<HostText> PathOfItemOfPath(const std::string &path) = 0;
};

// The cell's text in the encoding that host code asked for. `object` is the number of the text object.
std::optional<HostText> HandOut(const Cell &cell, int32_t object, bool useSJIS, uint32_t resultEncode,
                                Host &host);

}  // namespace model
