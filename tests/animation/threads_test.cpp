// One manager and one reporter per thread is a promise: eight threads give what one gives.
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "refhost/scenes/paths.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "tests/helpers/managed.h"
#include "tests/helpers/recording_reporter.h"
#include "tests/helpers/registered.h"
#include "tests/helpers/scratch_directory.h"
#include "vexa/mesh/Mesh.h"
#include "vexa/support/XCReporter.h"
#include "vexa/support/XStPushReporter.h"

using namespace vexa::refhost;
using Record = std::vector<double>;

namespace {

void append(Record& record, const UxZel::CZelPoint& p) {
  record.insert(record.end(), {p.x, p.y, p.z});
}

/// Two walkers on a path and a cart on another, with a manager and a scene of their own.
Record play(const std::string& animationFile) {
  Record record;
  vexa::tests::RecordingReporter reporter;
  const Norvel::XStPushReporter scope(&reporter, false);
  const auto manager = vexa::tests::makeManager();
  Scene walkers = scenes::walk(scenes::windingPath(7), 2, 1000);
  Scene ride = scenes::ride(scenes::circlePath(5));
  for (const std::size_t i : {0u, 1u}) {
    vexa::tests::registerInstance(*manager, walkers, i, animationFile);
  }
  for (int frame = 0; frame < 120; ++frame) {
    Norvel::XCReporter::Warning("frame %d", frame);
    for (const std::size_t i : {0u, 1u}) {
      const auto shown = unsigned(vexa::tests::drive(*manager, walkers, i, frame).mInteger);
      const Instance& walker = walkers.mInstances.mElements[i];
      append(record, walker.mPosition);
      const UXS::Mesh* mesh = manager->GetCurrentDefinition(0, shown, walker.mIdentity.mUUID);
      for (const auto& v : mesh->GetVerticesArray())
        append(record, {double(v.x), double(v.y), double(v.z)});
    }
    const auto place =
        manager->InterpolateValue(&ride, &ride.mProperties[0], frame, nullptr, nullptr);
    record.insert(record.end(), place.mVector, place.mVector + 3);
  }
  record.push_back(double(reporter.lines.size()));
  return record;
}

}  // namespace

TEST(Threads, EachWithAManagerOfItsOwnGiveTheSameBits) {
  const vexa::tests::ScratchDirectory scratch;
  const std::string file = scratch / "walker.amo";
  writeAnimationFile(vexa::scene::walkerAnimation(), file);
  std::vector<Record> records(8);
  std::vector<std::thread> threads;
  for (Record& record : records) {
    threads.emplace_back([&record, &file] { record = play(file); });
  }
  for (std::thread& thread : threads) thread.join();
  const Record alone = play(file);
  EXPECT_EQ(alone.back(), 120);
  ASSERT_EQ(alone.size(), 120u * (2 * (1 + 24) + 1) * 3 + 1) << "with the number of reports";
  for (const Record& record : records) EXPECT_TRUE(record == alone);
}
