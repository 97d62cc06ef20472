// A file of materials, read as the one that an OBJ text names.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <unistd.h>

#include "formats/mtl.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string name = "vexa_fuzz_" + std::to_string(getpid()) + ".mtl";
  const std::string file = "/tmp/" + name;
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), std::streamsize(size));
  const auto materials = vexa::formats::readMaterialsOf("mtllib " + name + "\n", "/tmp");
  vexa::formats::formatMtl(materials);
  return unlink(file.c_str());
}
