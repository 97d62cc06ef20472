#include <algorithm>
#include <cstring>

#include "importer/fbx_document_internal.h"

namespace vexa::importer {

namespace {

const std::string kMagic("Kaydara FBX Binary  \0\x1a\0", 23);

// For references to a text that is not there.
const std::string kNoText;

std::uint32_t versionOfText(const std::string& bytes) {
  constexpr std::string_view kKey = "FBXVersion:";
  // The version is in the header; a search through all of a large file would cost time.
  const std::size_t place = bytes.substr(0, 4096).find(kKey);
  if (place == std::string::npos) return 0;
  std::uint32_t version = 0;
  for (std::size_t i = bytes.find_first_not_of(" \t", place + kKey.size());
       i < bytes.size() && bytes[i] >= '0' && bytes[i] <= '9' && version < 100000; ++i) {
    version = 10 * version + std::uint32_t(bytes[i] - '0');
  }
  return version;
}

bool isBinary(const std::string& bytes) {
  return bytes.size() >= kMagic.size() + 4 && bytes.compare(0, kMagic.size(), kMagic) == 0;
}

}  // namespace

double FbxValue::number() const {
  if (mKind == Kind::Integer) return double(mInteger);
  return mKind == Kind::Real ? mReal : 0;
}

const FbxRecord* FbxRecord::find(std::string_view name) const {
  const auto found = std::find_if(mChildren.begin(), mChildren.end(),
                                  [&](const FbxRecord& child) { return child.mName == name; });
  return found == mChildren.end() ? nullptr : &*found;
}

std::vector<double> FbxRecord::numbers(std::string_view name) const {
  // Writers use one array, or as many single values.
  const FbxRecord* child = find(name);
  if (child == nullptr || child->mValues.empty()) return {};
  if (child->mValues[0].mKind == FbxValue::Kind::Array) return child->mValues[0].mArray;
  std::vector<double> result;
  for (const FbxValue& value : child->mValues) result.push_back(value.number());
  return result;
}

const std::string& FbxRecord::text(std::size_t index) const {
  return index < mValues.size() ? mValues[index].mText : kNoText;
}

std::int64_t FbxRecord::integer(std::size_t index) const {
  if (index >= mValues.size()) return 0;
  const FbxValue& value = mValues[index];
  if (value.mKind == FbxValue::Kind::Integer) return value.mInteger;
  // Below 2^63: converting more to an integer would be undefined.
  constexpr double kLargest = 9e18;
  const double number = value.number();
  return number > -kLargest && number < kLargest ? std::int64_t(number) : 0;
}

std::uint32_t fbxVersion(const std::string& bytes) {
  if (!isBinary(bytes)) return versionOfText(bytes);
  std::uint32_t version = 0;
  std::memcpy(&version, bytes.data() + kMagic.size(), sizeof(version));
  return version;
}

FbxDocument parseFbx(const std::string& bytes) {
  FbxDocument document;
  document.mVersion = fbxVersion(bytes);
  document.mIsBinary = isBinary(bytes);
  document.mRoot =
      document.mIsBinary ? parseBinaryFbx(bytes, document.mVersion) : parseTextFbx(bytes);
  return document;
}

}  // namespace vexa::importer
