#include <cstring>
#include <stdexcept>
#include <zlib.h>

#include "importer/fbx_document_internal.h"

namespace vexa::importer {

namespace {

// A binary FBX file:
//
//   27 bytes   "Kaydara FBX Binary  ", some fixed bytes, uint32 version
//   records    each: end of the record, number of values, length of the values (4 or 8 bytes each)
//              one byte of length and the name, the values, then nested records
//              and a record of zeros after the last of them
//
// Records nest six or seven deep in practice; the limit keeps a made-up file from using up the
// stack.
constexpr int kDeepest = 64;
constexpr std::size_t kHeader = 27;

class BinaryReader {
 public:
  BinaryReader(const std::string& bytes, bool isWide) : mBytes(bytes), mIsWide(isWide) {}

  FbxRecord read() {
    FbxRecord root;
    mPlace = kHeader;
    while (mPlace < mBytes.size() && addRecord(root, mBytes.size(), 0)) {
    }
    return root;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw std::runtime_error("byte " + std::to_string(mPlace) + ": " + what);
  }

  template <class T>
  T take() {
    if (mBytes.size() - mPlace < sizeof(T)) fail("the file ends within a record");
    T value;
    std::memcpy(&value, mBytes.data() + mPlace, sizeof(T));
    mPlace += sizeof(T);
    return value;
  }

  std::string takeText(std::size_t length) {
    if (length > mBytes.size() - mPlace) fail("a text reaches past the end of the file");
    mPlace += length;
    return mBytes.substr(mPlace - length, length);
  }

  // From version 7.5 on these take 8 bytes.
  std::uint64_t takeSize() { return mIsWide ? take<std::uint64_t>() : take<std::uint32_t>(); }

  // False at the record of zeros that ends a list.
  bool addRecord(FbxRecord& ioParent, std::size_t limit, int depth) {
    const std::uint64_t end = takeSize(), count = takeSize();
    takeSize();  // the length of the values, which say it themselves
    const std::size_t nameLength = take<std::uint8_t>();
    if (end == 0) return false;
    // A record stays within the one that holds it, and ends behind its own header.
    if (end > limit || end < mPlace) fail("a record ends at byte " + std::to_string(end));
    if (depth > kDeepest) fail("records are nested too deeply");
    FbxRecord& record = ioParent.mChildren.emplace_back();
    record.mName = takeText(nameLength);
    for (std::uint64_t i = 0; i < count; ++i) record.mValues.push_back(takeValue());
    if (mPlace > end) fail("values reach past the end of their record");
    while (mPlace < end && addRecord(record, std::size_t(end), depth + 1)) {
    }
    // What an unknown writer put between the last child and the end is skipped.
    mPlace = std::size_t(end);
    return true;
  }

  FbxValue takeValue() {
    switch (const char kind = take<char>()) {
      case 'Y':
        return integer(take<std::int16_t>());
      case 'C':
      case 'B':
        return integer(take<std::int8_t>());
      case 'I':
        return integer(take<std::int32_t>());
      case 'L':
        return integer(take<std::int64_t>());
      case 'F':
        return real(double(take<float>()));
      case 'D':
        return real(take<double>());
      case 'S':
      case 'R':
        return text(takeText(take<std::uint32_t>()));
      case 'f':
        return array<float>();
      case 'd':
        return array<double>();
      case 'i':
        return array<std::int32_t>();
      case 'l':
        return array<std::int64_t>();
      case 'b':
      case 'c':
        return array<std::int8_t>();
      default:
        fail(std::string("a value of unknown kind ") + std::to_string(int(kind)));
    }
  }

  static FbxValue integer(std::int64_t number) {
    FbxValue value;
    value.mInteger = number;
    return value;
  }
  static FbxValue real(double number) {
    FbxValue value;
    value.mKind = FbxValue::Kind::Real;
    value.mReal = number;
    return value;
  }
  static FbxValue text(std::string text) {
    FbxValue value;
    value.mKind = FbxValue::Kind::Text;
    value.mText = std::move(text);
    return value;
  }

  template <class T>
  FbxValue array() {
    const std::size_t count = take<std::uint32_t>();
    const auto encoding = take<std::uint32_t>();
    const std::size_t length = take<std::uint32_t>();
    // Encoding 1 is deflate; 0 is plain. count is 32-bit, so the product fits 64 bits.
    const std::string stored = takeText(encoding == 1 ? length : count * sizeof(T));
    const std::string bytes = encoding == 1 ? inflated(stored, count * sizeof(T)) : stored;
    FbxValue value;
    value.mKind = FbxValue::Kind::Array;
    value.mArray.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
      T number;
      std::memcpy(&number, bytes.data() + i * sizeof(T), sizeof(T));
      value.mArray.push_back(double(number));
    }
    return value;
  }

  std::string inflated(const std::string& stored, std::size_t size) const {
    // Deflate shrinks by a factor of at most 1032.
    if (size > 1032 * stored.size() + 64) fail("a compressed array claims too many numbers");
    std::string bytes(size, '\0');
    auto got = uLongf(size);
    const int status =
        uncompress(reinterpret_cast<Bytef*>(bytes.data()), &got,
                   reinterpret_cast<const Bytef*>(stored.data()), uLong(stored.size()));
    if (status != Z_OK || got != size) fail("a compressed array is damaged");
    return bytes;
  }

  const std::string& mBytes;
  const bool mIsWide;
  std::size_t mPlace = 0;
};

}  // namespace

FbxRecord parseBinaryFbx(const std::string& bytes, std::uint32_t version) {
  return BinaryReader(bytes, version >= 7500).read();
}

}  // namespace vexa::importer
