#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

#include "vexa/framecollector/XIFrameCollector.h"

namespace vexa::tests {

// A value that the file does not hold in full is the preset.
template <class T>
T readOr(std::FILE* ioFile, T preset) {
  T value;
  return std::fread(&value, sizeof(T), 1, ioFile) == 1 ? value : preset;
}

// Sixteen doubles in the file, narrowed one by one.
inline UXS::uxs_generic_mat4<float> readMatrixOrIdentity(std::FILE* ioFile) {
  const auto matrix = readOr(ioFile, UXS::uxs_generic_mat4<double>());
  UXS::uxs_generic_mat4<float> result;
  for (int k = 0; k < 16; ++k) result.e[k] = float(matrix.e[k]);
  return result;
}

/// The animation file read as plainly as it goes, value by value, with no limit on what it asks
/// for.
inline void readAnimationFileLiterally(std::FILE* ioFile,
                                       Norvel::Vexa::XIFrameCollector& ioCollector) {
  if (readOr<std::uint32_t>(ioFile, 0) != 101) return;
  const auto takes = readOr<std::uint32_t>(ioFile, 0);
  for (std::uint32_t t = 0; t < takes; ++t) ioCollector.CreateTake();
  ioCollector.SetGlobalTransformation(readMatrixOrIdentity(ioFile));
  std::vector<std::uint32_t> frames(takes);
  for (std::uint32_t& count : frames) count = readOr<std::uint32_t>(ioFile, 0);
  const auto nodes = readOr<std::uint32_t>(ioFile, 0);
  for (std::uint32_t n = 0; n < nodes; ++n) {
    int node = -1;  // stays so for a node without matrices, also for its links
    for (std::uint32_t t = 0; t < takes; ++t) {
      for (std::uint32_t f = 0; f < frames[t]; ++f) {
        node = int(ioCollector.AddTransformation(readMatrixOrIdentity(ioFile), t, node));
      }
    }
    const auto links = readOr<std::uint32_t>(ioFile, 0);
    for (std::uint32_t i = 0; i < links; ++i) {
      const auto vertex = readOr<std::uint32_t>(ioFile, 0);
      ioCollector.AddLink(node, UxZel::CZelUUID{}, vertex, readOr(ioFile, 0.0));
    }
  }
}

}  // namespace vexa::tests
