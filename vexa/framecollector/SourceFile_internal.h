#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

#include "vexa/support/CChemin.h"

namespace Norvel {

// A value of the file, which is little-endian, at any address.
template <class T, class Bits>
T littleEndian(const unsigned char* from) {
  static_assert(sizeof(T) == sizeof(Bits));
  Bits bits;
  std::memcpy(&bits, from, sizeof(bits));
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
  bits = Bits(sizeof(Bits) == 4 ? __builtin_bswap32(std::uint32_t(bits)) : __builtin_bswap64(bits));
#endif
  T value;
  std::memcpy(&value, &bits, sizeof(value));
  return value;
}
inline std::uint32_t wordAt(const unsigned char* from) {
  return littleEndian<std::uint32_t, std::uint32_t>(from);
}
inline double doubleAt(const unsigned char* from) {
  return littleEndian<double, std::uint64_t>(from);
}

// A regular file, read in large steps from its start. Failures throw std::runtime_error with the
// texts of XCAMOFileIOTool.
//
// Invariant: the bytes from mBegin to mEnd of the buffer are the next ones of the file; mUnread
// bytes follow them.
class SourceFile {
 public:
  explicit SourceFile(const CChemin& path);

  // Bytes that are still to be taken.
  std::uint64_t remaining() const { return mEnd - mBegin + mUnread; }

  // Takes elements of `size` bytes that lie side by side: at least one and at most `most`. Returns
  // the first and sets how many; null when the file ends before the next element does.
  const unsigned char* take(std::size_t size, std::uint64_t most, std::size_t& outCount);
  const unsigned char* takeOne(std::size_t size) {
    std::size_t count;
    return take(size, 1, count);
  }
  // Drops what is left: where a value is cut, nothing follows.
  void drop();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void fill();

  // Small enough for a second-level cache, large enough that calls of the system do not count.
  static constexpr std::size_t kStep = std::size_t{1} << 20;

  std::unique_ptr<std::FILE, Close> mFile;
  std::unique_ptr<unsigned char[]> mBuffer;
  std::size_t mBegin = 0, mEnd = 0;
  std::uint64_t mUnread = 0;
};

}  // namespace Norvel
