// Where the bytes of a text come from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace rowlark {

class ByteSource {
 public:
  virtual ~ByteSource() = default;

  // Appends up to so many bytes, those from that place on; fewer at the end. Throws std::ios_base::failure.
  virtual void Read(std::uintmax_t place, std::size_t size, std::string& bytes) = 0;
  // Of all bytes; 0 when that is not known.
  virtual std::uintmax_t Size() const = 0;
  // Whether any place can be read, and more than once; else each reading goes on where the last one ended.
  virtual bool CanGoBack() const = 0;
  // Whether more may come behind the end that a reading met.
  virtual bool IsGrowing() const { return false; }
};

}  // namespace rowlark
