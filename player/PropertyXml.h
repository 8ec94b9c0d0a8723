#pragma once

// The elements of a property list in XML, in their order, for what looks for something in it.

#include <cstddef>
#include <string_view>

namespace player {

class PropertyXml {
 public:
  PropertyXml() = default;
  PropertyXml(const PropertyXml &) = delete;
  PropertyXml &operator=(const PropertyXml &) = delete;
  virtual ~PropertyXml() = default;

  // Hands on what stands in the bytes, which must be fewer than 2 GB. Entities that they declare, elements
  // deeper than any property list has them and broken XML end the reading; what stands before was handed on.
  // Throws std::bad_alloc without memory, and nothing for what the bytes hold.
  void read(std::string_view xml);

 protected:
  // How many elements are open: 1 at the beginning of the outermost one and at its end.
  size_t depth() const { return depth_; }

 private:
  struct Calls;

  virtual void begin(std::string_view name) = 0;
  virtual void add(std::string_view text) = 0;  // text of the element at hand, in pieces
  virtual void end(std::string_view name) = 0;

  size_t depth_ = 0;
};

}  // namespace player
