#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/golden/Numbers.h"
#include "vexa/vexa.h"

namespace vexa::tests {

/// Takes the inputs and results of one group, case by case: every result bit goes into the group's
/// digest, and the cases 0, 3, 15, 63, ... are also kept as text; of the samples that are compared
/// in units in the last place there are more, and they hold all results.
///
/// All NaN count as one: which NaN comes out of an operation is the processor's choice.
class Recorder {
 public:
  enum class Keeps { kSamples, kWholeSamples, kAll };

  Recorder(const std::string& group, Keeps keeps)
      : mGroup(group), mNumbers(hashOf(group)), mKeeps(keeps) {}

  /// Where the group's inputs come from; seeded by its name, so that groups do not depend on each
  /// other.
  Numbers& numbers() { return mNumbers; }

  /// Begins a case, whose inputs are then given by in() and results by out().
  void begin() {
    endCase();
    const std::uint64_t next = mCase + 1;
    mIsKept = mKeeps == Keeps::kAll || next % 128 == 0 ||
              ((next & mCase) == 0 && (next & 0x5555555555555555u) != 0);
    mText.clear();
    mShown = 0;
    mCaseDigest = kStart;
    mIsOpen = true;
  }

  template <class T>
  Recorder& in(const char* name, const T& value) {
    if (mIsKept) {
      mText += mText.empty() ? "" : " ";
      mText += name;
      mText += '=';
      Writer{*this, true}.write(value);
    }
    return *this;
  }

  template <class... T>
  void out(const T&... values) {
    (Writer{*this, false}.write(values), ...);
  }

  /// The result of a call, or the text of its exception. The text of an index out of range is the
  /// standard library's own: its kind stands for it.
  template <class Call>
  void outOf(Call call) {
    try {
      if constexpr (std::is_void_v<decltype(call())>) {
        call();
      } else {
        out(call());
      }
    } catch (const std::out_of_range&) {
      out("throws", "std::out_of_range");
    } catch (const std::exception& e) {
      out("throws", e.what());
    }
  }

  std::uint64_t finish() {
    endCase();
    return mDigest;
  }
  const std::vector<std::string>& samples() const { return mSamples; }

  static std::uint64_t hashOf(const std::string& text) {
    std::uint64_t hash = kStart;
    for (const char c : text) mix(hash, std::uint64_t(static_cast<unsigned char>(c)));
    return hash;
  }

 private:
  static constexpr std::uint64_t kStart = 0xCBF29CE484222325u;
  static constexpr int kMostShown = 16;

  static void mix(std::uint64_t& ioHash, std::uint64_t word) {
    ioHash = (ioHash ^ word) * 0x9E3779B97F4A7C15u;
    ioHash ^= ioHash >> 32;
  }

  // One value, component by component, as text when it is an input, as bits when it is a result.
  struct Writer {
    Recorder& mTo;
    bool mIsInput;

    // The text is asked for only when it is kept.
    template <class Text>
    void word(std::uint64_t bits, Text text) {
      if (!mIsInput) mix(mTo.mCaseDigest, bits);
      if (mTo.mIsKept) mTo.show(text(), mIsInput);
    }
    template <class T, std::enable_if_t<std::is_integral_v<T> || std::is_enum_v<T>, int> = 0>
    void write(T value) {
      const auto wide = static_cast<std::int64_t>(value);
      word(std::uint64_t(wide), [&] { return std::to_string(wide); });
    }
    void write(float value) {
      word(bitsOf<std::uint32_t>(value), [&] { return textOf(double(value), true); });
    }
    void write(double value) {
      word(bitsOf<std::uint64_t>(value), [&] { return textOf(value, false); });
    }
    void write(const char* text) { write(std::string(text)); }
    void write(const std::string& text) {
      word(hashOf(text), [&] { return quoted(text); });
    }
    template <class T>
    void write(const std::vector<T>& values) {
      write(values.size());
      for (const T& value : values) write(value);
    }
    template <class T>
    void write(const Oru::TVector3D<T>& v) {
      all(v.x, v.y, v.z);
    }
    template <class T>
    void write(const Oru::TVector2D<T>& v) {
      all(v.x, v.y);
    }
    template <class T>
    void write(const UXS::uxs_generic_vec3<T>& v) {
      all(v.x, v.y, v.z);
    }
    template <class T>
    void write(const Norvel::Vexa::TUxBaseVector<T>& v) {
      all(v.x, v.y, v.z);
    }
    template <class T>
    void write(const Norvel::Vexa::ux_point4<T>& v) {
      all(v.x, v.y, v.z, v.w);
    }
    template <class T>
    void write(const Norvel::Vexa::ux_matrix44<T>& m) {
      for (const T e : m.e) write(e);
    }
    template <class T>
    void write(const UXS::uxs_generic_mat4<T>& m) {
      for (const T e : m.e) write(e);
    }
    void write(const UXS::uxs_color& c) { all(c.r, c.g, c.b, c.a); }
    void write(const Oru::TBox3D<float>& box) { all(box.mMin, box.mMax, box.mIsValid); }
    void write(const UxZel::CZelPoint& p) { all(p.x, p.y, p.z); }
    void write(const UxZel::CZelVector& v) { all(v.x, v.y, v.z); }
    void write(const UxZel::CZelMatrix& m) {
      for (const auto& row : m.mElements) all(row[0], row[1], row[2], row[3]);
    }
    // By its bytes, since the type of what it holds is not known here.
    void write(const UxZel::IZelKeyFrame::uValue& value) {
      for (int i = 0; i < 24; i += 4) {
        std::uint32_t four = 0;
        for (int k = 3; k >= 0; --k) four = four << 8 | value.mBytes[i + k];
        word(four, [&] {
          char text[16];
          std::snprintf(text, sizeof(text), "x%08x", static_cast<unsigned int>(four));
          return std::string(text);
        });
      }
    }
    template <class... T>
    void all(const T&... values) {
      (write(values), ...);
    }

    static std::string quoted(const std::string& text) {
      std::string shown = "\"";
      for (const char c : text) {
        const bool isPlain = c > 31 && c < 127 && c != '"' && c != '\\';
        char code[8] = {c, 0};
        if (!isPlain) std::snprintf(code, sizeof(code), "\\%02x", static_cast<unsigned char>(c));
        shown += code;
      }
      return shown + '"';
    }
    template <class Bits, class T>
    static std::uint64_t bitsOf(T value) {
      if (std::isnan(value)) return ~std::uint64_t{0};
      Bits bits;
      std::memcpy(&bits, &value, sizeof(T));
      return bits;
    }
    static std::string textOf(double value, bool isFloat) {
      if (std::isnan(value)) return "nan";
      char text[40];
      if (isFloat) std::snprintf(text, sizeof(text), "%.9gf", value);
      if (!isFloat) std::snprintf(text, sizeof(text), "%.17g", value);
      return text;
    }
  };

  void show(const std::string& text, bool isInput) {
    if (!isInput && mShown++ >= kMostShown && mKeeps == Keeps::kSamples) return;
    if (!isInput && mShown == 1) mText += " ->";
    if (mText.empty() || mText.back() != '=') mText += isInput ? "," : " ";
    mText += text;
  }

  void endCase() {
    if (!mIsOpen) return;
    mIsOpen = false;
    mix(mDigest, mCaseDigest);
    if (mIsKept) {
      if (mShown > kMostShown && mKeeps == Keeps::kSamples) {
        char rest[64];
        std::snprintf(rest, sizeof(rest), " ... %d in all, digest %016llx", mShown,
                      static_cast<unsigned long long>(mCaseDigest));
        mText += rest;
      }
      mSamples.push_back(mGroup + " " + std::to_string(mCase) + ": " + mText);
    }
    ++mCase;
  }

  std::string mGroup;
  Numbers mNumbers;
  Keeps mKeeps;
  std::uint64_t mDigest = kStart, mCaseDigest = kStart;
  std::uint64_t mCase = 0;
  bool mIsKept = false, mIsOpen = false;
  int mShown = 0;
  std::string mText;
  std::vector<std::string> mSamples;
};

}  // namespace vexa::tests
