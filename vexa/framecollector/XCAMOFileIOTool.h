#pragma once

#include "vexa/Export.h"
#include "vexa/support/CChemin.h"

namespace Norvel::Vexa {
class XIFrameCollector;
}

namespace Norvel {

/// Reads a baked skinned-mesh animation file and pours it into a frame collector.
///
/// The layout of the file is in docs/animation_file.md. A file that ends early is read as if zeros
/// followed (identities where matrices are due); see there how much may be missing.
class VEXA_EXPORT XCAMOFileIOTool {
 public:
  explicit XCAMOFileIOTool(CChemin path);
  virtual ~XCAMOFileIOTool();

  /// Reads the whole file into a collector that is empty so far: takes, global transformation, then
  /// node by node the matrices and the links.
  ///
  /// Throws std::runtime_error when the file can not be opened or read or is not a regular file,
  /// has another version than 101, or claims far more than it holds; what the collector throws
  /// passes through. The collector then keeps what it was given so far. The file is closed in any
  /// case.
  void Read(Vexa::XIFrameCollector* ioCollector);

 private:
  CChemin mPath;
};

}  // namespace Norvel
