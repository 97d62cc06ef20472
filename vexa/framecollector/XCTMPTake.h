#pragma once

#include <string>

#include "vexa/Export.h"

namespace Norvel::Vexa {

/// Name and frame rate of one take of an animation, kept for the host; the library never reads
/// them.
class VEXA_EXPORT XCTMPTake {
 public:
  virtual ~XCTMPTake() = default;

  /// The name, empty at first; the text holds until SetName.
  const char* GetName() const { return mName.c_str(); }
  /// A null name counts as empty.
  void SetName(const char* name) { mName = name ? name : ""; }

  /// Frames per second as the host gave them; 0.33 at first.
  double GetFPS() const { return mFPS; }
  void SetFPS(double fps) { mFPS = fps; }

 private:
  std::string mName;
  double mFPS = 0.33;
};

}  // namespace Norvel::Vexa
