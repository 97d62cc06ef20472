#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/golden/Difference.h"
#include "tests/golden/Recorder.h"

namespace vexa::tests {

/// Whether the results are made of plain arithmetic, the same everywhere, or pass through a
/// function of the system's mathematics library, whose last bit differs between systems.
enum class Kind { kArithmetic, kLibm };

/// One family of operations with a digest of its own.
struct Group {
  std::string mName;
  Kind mKind;
  std::function<void(Recorder&)> mRun;
  /// How far the numbers of another mathematics library may be off.
  Bound mBound = {};
};
using Groups = std::vector<Group>;

// Each adds the groups of one folder of the library.
void addMathGroups(Groups& out);
void addInterpolationGroups(Groups& out);
void addKeyGroups(Groups& out);
void addPathGroups(Groups& out);
void addMeshGroups(Groups& out);
void addCollectorGroups(Groups& out);
void addManagerGroups(Groups& out);
void addToolGroups(Groups& out);
void addSupportGroups(Groups& out);

}  // namespace vexa::tests
