#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::importer {

/// One value of an FBX record.
struct FbxValue {
  enum class Kind : std::uint8_t { Integer, Real, Text, Array };

  Kind mKind = Kind::Integer;
  std::int64_t mInteger = 0;
  double mReal = 0;
  std::string mText;
  std::vector<double> mArray;

  /// An integer or real number as a real one; 0 for anything else.
  double number() const;
};

/// One record: "Name: value, value, ... { children }".
struct FbxRecord {
  std::string mName;
  std::vector<FbxValue> mValues;
  std::vector<FbxRecord> mChildren;

  /// The first child of that name, or null.
  const FbxRecord* find(std::string_view name) const;
  /// The array of such a child, also one written as single numbers; empty without it.
  std::vector<double> numbers(std::string_view name) const;
  /// Empty, or 0, when there is no such value.
  const std::string& text(std::size_t index) const;
  std::int64_t integer(std::size_t index) const;
};

struct FbxDocument {
  FbxRecord mRoot;
  /// 7400 for version 7.4.
  std::uint32_t mVersion = 0;
  bool mIsBinary = false;
};

/// The version that an FBX file states, binary or text; 0 when the bytes are no FBX file.
std::uint32_t fbxVersion(const std::string& bytes);

/// Parses a file of either form. Nothing in it is trusted; throws std::runtime_error that names the
/// byte and what is wrong there.
FbxDocument parseFbx(const std::string& bytes);

/// The two forms, for parseFbx.
FbxRecord parseBinaryFbx(const std::string& bytes, std::uint32_t version);
FbxRecord parseTextFbx(const std::string& bytes);

}  // namespace vexa::importer
