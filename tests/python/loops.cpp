// The loops that speed.py compares the module with: seconds, best of five, for a million samples
// of a value and for 1000 poses. usage: vexa_python_loops SCENE VALUE
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "scene/ScenePlayer.h"
#include "scene/scene_file.h"
#include "scene/value_parts.h"

namespace {

template <class Work>
double best(Work work) {
  double seconds = 1e9;
  for (int round = 0; round < 5; ++round) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    seconds = std::min(seconds, passed.count());
  }
  return seconds;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  vexa::scene::ScenePlayer player(vexa::scene::readSceneFile(argv[1]));
  const auto& values = player.scene().mProperties;
  const auto value = std::size_t(std::find_if(values.begin(), values.end(),
                                              [&](const auto& v) { return v.mName == argv[2]; }) -
                                 values.begin());
  if (value == values.size()) return 1;
  const std::size_t parts = vexa::scene::partCount(values[value]);
  constexpr int kSamples = 1'000'000, kPoses = 1000;
  const double sampled = best([&] {
    std::vector<double> numbers(kSamples * parts);
    for (int frame = 0; frame < kSamples; ++frame) {
      vexa::scene::writeParts(values[value], player.sample(value, frame),
                              &numbers[std::size_t(frame) * parts]);
    }
  });
  const double deformed = best([&] {
    std::vector<vexa::formats::MovingMesh> posed = player.meshes();
    for (int frame = 0; frame < kPoses; ++frame) {
      player.setFrame(frame);
      player.appendPoses(posed);
    }
  });
  std::printf("%.6f %.6f\n", sampled, deformed);
}
