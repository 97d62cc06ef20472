// A file of materials, read as the one that an OBJ text names.
#include <cstddef>
#include <cstdint>
#include <fstream>

#include "formats/mtl.h"
#include "fuzz/scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto& folder = vexa::fuzz::scratchFolder();
  std::ofstream(folder / "some.mtl", std::ios::binary)
      .write(reinterpret_cast<const char*>(data), std::streamsize(size));
  vexa::formats::formatMtl(vexa::formats::readMaterialsOf("mtllib some.mtl\n", folder));
  return 0;
}
