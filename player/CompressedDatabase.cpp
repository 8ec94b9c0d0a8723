#include "player/CompressedDatabase.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>
#include <zlib.h>

#include "platform/carbon/Descriptor.h"
#include "player/Error.h"
#include "player/FileBytes.h"
#include "player/FileWord.h"

namespace player {

namespace {

constexpr size_t kBlock = size_t{128} * 1024;
constexpr uint64_t kMostBytes = std::numeric_limits<int32_t>::max();  // that a database can have
constexpr uint64_t kAlwaysAllowed = 64ULL << 20;
constexpr uint64_t kMostRatio = 100;

uint64_t sizeOf(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) throw std::system_error(errno, std::generic_category());
  return static_cast<uint64_t>(status.st_size);
}

class Inflater {
 public:
  Inflater(int from, std::string name, int to, std::string toName)
      : from_(from), name_(std::move(name)), to_(to), toName_(std::move(toName)), fileSize_(sizeOf(from)) {}

  uint64_t run() {
    copyHeader();
    inflateBody();
    correctLength();
    return left_;
  }

 private:
  [[noreturn]] void fail(const std::string &what) const { throw PlayerError(name_ + ": " + what); }

  void writeOut(std::string_view bytes) {
    try {
      writeAll(to_, bytes);
    } catch (const std::system_error &error) {
      throw PlayerError(toName_, error.code().value());
    }
    written_ += bytes.size();
  }

  void copyHeader() {
    constexpr size_t kCommonHeader = 16;
    header_ = readAt(from_, 0, kCommonHeader);
    if (header_.size() < kCommonHeader) fail("the file is truncated: its header is not complete");
    bigEndian_ = header_.starts_with("hdfm");
    const uint32_t length = wordAt(header_, 4, bigEndian_);
    if (length > fileSize_) fail("the file is truncated: its header is not complete");
    for (uint64_t at = 0; at < length; at += kBlock) {
      writeOut(readAt(from_, at, static_cast<size_t>(std::min<uint64_t>(kBlock, length - at))));
    }
    bodyAt_ = length;
  }

  void inflateBody() {
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) throw std::bad_alloc();
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> owner(&stream, &inflateEnd);
    std::vector<char> in(kBlock);
    std::vector<char> out(kBlock);
    uint64_t at = bodyAt_;
    for (int status = Z_OK; status != Z_STREAM_END;) {
      if (stream.avail_in == 0) {
        const size_t got = readAt(from_, at, in.data(), in.size());
        if (got == 0) {
          fail("the compressed database is truncated: its stream ends after " +
               std::to_string(fileSize_ - bodyAt_) + " bytes and is not complete");
        }
        at += got;
        stream.next_in = reinterpret_cast<Bytef *>(in.data());
        stream.avail_in = static_cast<uInt>(got);
      }
      stream.next_out = reinterpret_cast<Bytef *>(out.data());
      stream.avail_out = static_cast<uInt>(out.size());
      status = inflate(&stream, Z_NO_FLUSH);
      // What was inflated before a failure is good too.
      writeOut({out.data(), out.size() - stream.avail_out});
      if (status == Z_MEM_ERROR) throw std::bad_alloc();
      if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) failInflating(stream, at);
      checkSize();
    }
    left_ = fileSize_ - std::min(fileSize_, at - stream.avail_in);
  }

  [[noreturn]] void failInflating(const z_stream &stream, uint64_t at) const {
    fail("the compressed database is damaged near byte " + std::to_string(at - stream.avail_in) + " (" +
         (stream.msg != nullptr ? stream.msg : "it needs a dictionary that it does not hold") + ")");
  }

  void checkSize() const {
    if (written_ > kMostBytes)
      throw InflatesTooFar(name_ + ": the compressed database inflates to 2 GB or more, too much to be read");
    if (written_ > kAlwaysAllowed && written_ / kMostRatio > fileSize_) {
      throw InflatesTooFar(name_ + ": the compressed database inflates to more than " +
                           std::to_string(kMostRatio) + " times its size, as no database does");
    }
  }

  void correctLength() {
    std::array<char, 4> word{};
    for (size_t i = 0; i < 4; ++i) {
      word[bigEndian_ ? 3 - i : i] = static_cast<char>(written_ >> (8 * i) & 0xFF);
    }
    constexpr off_t kTotalLength = 8;
    if (pwrite(to_, word.data(), word.size(), kTotalLength) != static_cast<ssize_t>(word.size()))
      throw PlayerError(toName_, errno);
  }

  int from_;
  std::string name_;
  int to_;
  std::string toName_;
  uint64_t fileSize_;
  std::string header_;
  bool bigEndian_ = false;
  uint64_t bodyAt_ = 0;
  uint64_t written_ = 0;
  uint64_t left_ = 0;
};

}  // namespace

uint64_t inflateDatabase(int from, const std::string &name, int to, const std::string &toName) {
  try {
    return Inflater(from, name, to, toName).run();
  } catch (const std::system_error &error) {
    throw PlayerError(name, error.code().value());
  }
}

}  // namespace player
