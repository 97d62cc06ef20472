// The life of a manager, a frame collector, a path and a reporter.
#include <cstring>
#include <filesystem>
#include <memory>

#include "formats/AnimationFile.h"
#include "refhost/scenes/paths.h"
#include "refhost/scenes/properties.h"
#include "refhost/scenes/walker.h"
#include "scene/fixtures/walker_animation.h"
#include "tests/faults/operations.h"
#include "tests/helpers/managed.h"
#include "tests/helpers/registered.h"
#include "vexa/animation/XCAnimationMgr.h"
#include "vexa/framecollector/XCAMOFileIOTool.h"
#include "vexa/framecollector/XCFrameCollector.h"
#include "vexa/mesh/MeshEditor.h"
#include "vexa/mesh/uxs_autoptr.h"
#include "vexa/paths/XC3DPath.h"
#include "vexa/paths/XCZELPathAgent.h"
#include "vexa/support/UxThrow.h"
#include "vexa/support/XCReporter.h"
#include "vexa/support/XStPushReporter.h"

namespace vexa::faults {
namespace {

using namespace vexa::refhost;
using Norvel::Vexa::XCFrameCollector;
using Norvel::Vexa::XIAnimationMgr;
using tests::drive;
using tests::makeManager;
using tests::registerInstance;
using uValue = UxZel::IZelKeyFrame::uValue;

constexpr char kFile[] = "walker.amo";

const UxZel::CZelUUID& idOf(const Scene& scene, std::size_t instance) {
  return scene.mInstances.mElements[instance].mIdentity.mUUID;
}

bool isZero(const uValue& value) {
  const uValue zero{};
  return std::memcmp(&value, &zero, sizeof(value)) == 0;
}

// A scene of walkers; the first one is registered.
struct Walkers {
  Scene mScene;
  tests::Manager mManager = makeManager();

  explicit Walkers(std::size_t count, bool isRegistered = true)
      : mScene(scenes::walk(scenes::windingPath(5), int(count), 1000)) {
    formats::writeAnimationFile(scene::walkerAnimation(), kFile);
    if (isRegistered) add(0);
  }
  ~Walkers() {
    for (auto& definition : mScene.mDefinitions) {
      XIAnimationMgr::ForgetAnimatedObject(mManager.get(), definition.mAnimatedObject.get());
    }
  }
  void add(std::size_t instance, const char* file = kFile, const char* fallback = "") {
    registerInstance(*mManager, mScene, instance, file, fallback);
  }
  bool isKnown(std::size_t instance) {
    return mManager->GetCurrentDefinition(0, 0, idOf(mScene, instance)) != nullptr;
  }
};

// Registers, and again where that failed: known afterwards exactly when it succeeded.
void registers(const Attempt& attempt, std::size_t instance, const char* file,
               const char* fallback = "") {
  Walkers walkers(2, instance > 0);
  const bool isDone = attempt([&] { walkers.add(instance, file, fallback); });
  const bool isKnown = walkers.isKnown(instance);
  require(isDone || !isKnown, "known after a failure");
  walkers.add(instance, kFile);
  require(walkers.isKnown(instance), "the next registration fails");
}

// A value that comes back is zero or the right one, and the next request gives the right one.
void asks(const Attempt& attempt, Scene& scene, double* rate = nullptr) {
  const auto manager = makeManager();
  uValue value{};
  UxZel::CZelVector direction;
  const auto ask = [&] {
    value = manager->InterpolateValue(&scene, &scene.mProperties[0], 5, &direction, rate);
  };
  const bool isDone = attempt(ask);
  const uValue first = value;
  ask();
  require(isDone, "a value throws");
  require(isZero(first) || std::memcmp(&first, &value, sizeof(value)) == 0, "a wrong value");
  require(!isZero(value), "the next request fails");
}

// Drives instance `index`; a failure leaves it where it was.
void drives(const Attempt& attempt, Walkers& walkers, std::size_t index) {
  const Instance& instance = walkers.mScene.mInstances.mElements[index];
  drive(*walkers.mManager, walkers.mScene, index, 7);
  const double before = instance.mPosition.x;
  uValue value{};
  // Another path, which has to be built first.
  walkers.mScene.mPaths.mElements[0].mPoints.mElements[1].mPassage.x += 1;
  require(attempt([&] { value = drive(*walkers.mManager, walkers.mScene, index, 30); }),
          "driving throws");
  require(!isZero(value) || instance.mPosition.x == before, "moved by a failure");
  value = drive(*walkers.mManager, walkers.mScene, index, 30);
  require(!isZero(value) && instance.mPosition.x != before, "the next drive fails");
}

// A mesh of a strip and a collector of two nodes on it.
struct Strip {
  UXS::uxs_autoptr<UXS::Mesh> mMesh{new UXS::Mesh};
  std::unique_ptr<XCFrameCollector> mCollector;

  Strip() {
    mMesh->increment();
    UXS::Mesh::Editor editor(*mMesh, false);
    for (unsigned v = 0; v < 12; ++v) editor.AddVertex({float(v / 2), float(v % 2), 0});
    for (unsigned v = 0; v + 2 < 12; ++v) editor.AddTriangle({v, v + 1, v + 2}, v % 3);
    editor.Commit();
    mCollector = std::make_unique<XCFrameCollector>(mMesh.get());
  }
  static void write(std::size_t length = ~std::size_t{0}) {
    formats::AnimationFile file;
    file.mFrameCounts = {2};
    file.mNodes.resize(2);
    for (auto& node : file.mNodes) {
      node.mMatrices = {formats::AnimationFile::kIdentity, formats::AnimationFile::kIdentity};
      node.mMatrices[1][12] = 3;
      for (unsigned v = 0; v < 12; ++v) node.mLinks.push_back({v, 0.5});
    }
    formats::writeAnimationFile(file, "strip.amo");
    std::error_code ignored;
    if (length != ~std::size_t{0}) std::filesystem::resize_file("strip.amo", length, ignored);
  }
  void read() const { Norvel::XCAMOFileIOTool("strip.amo").Read(mCollector.get()); }
};

void readsAFile(const Attempt& attempt, std::size_t length) {
  Strip::write(length);
  Strip strip, next;
  const bool isDone = attempt([&] { strip.read(); });
  next.read();
  const unsigned size = next.mCollector->GetSize();
  require(!isDone || strip.mCollector->GetSize() == size, "less than the file is read");
}

void addsToACollector(const Attempt& attempt) {
  Strip strip;
  strip.mCollector->CreateTake();
  const unsigned before = strip.mCollector->GetSize();
  const bool isDone = attempt([&] { strip.mCollector->AddTransformation({}, 0, -1); });
  require(isDone || strip.mCollector->GetSize() == before, "the size counts what failed");
  const unsigned after = strip.mCollector->GetSize();
  if (!isDone) strip.mCollector->AddTransformation({}, 0, -1);
  strip.mCollector->AddLink(0, {}, 0, 1);
  require(strip.mCollector->GetSize() > after, "no link can be added");
}

void addsLinks(const Attempt& attempt) {
  Strip strip;
  strip.mCollector->CreateTake();
  strip.mCollector->AddTransformation({}, 0, -1);
  double sum = 0;
  const bool isDone = attempt([&] { strip.mCollector->AddLink(0, {}, 0, 1); });
  strip.mCollector->GetVertexTransformation(strip.mMesh->GetVerticesArray().data(), 0, 0, sum);
  require(sum == (isDone ? 1 : 0), "a link that failed counts");
}

void makesTakes(const Attempt& attempt) {
  Strip strip;
  unsigned made = 0;
  attempt([&] {
    for (; made < 9; ++made) strip.mCollector->CreateTake();
  });
  require(strip.mCollector->GetNbrTakes() == made, "a take that failed counts");
}

void computesADefinition(const Attempt& attempt) {
  Strip::write();
  Strip strip;
  strip.read();
  const float rest = strip.mCollector->GetCurrentDefinition(0, 0, {})->GetVerticesArray()[0].x;
  attempt([&] { strip.mCollector->GetCurrentDefinition(0, 1, {}); });
  const auto& moved = strip.mCollector->GetCurrentDefinition(0, 1, {})->GetVerticesArray();
  require(moved.size() == 12 && moved[0].x == rest + 3, "a wrong pose");
}

void buildsAPath(const Attempt& attempt) {
  const Path path = scenes::windingPath(9);
  const Norvel::Vexa::XCZELPathInfo info(&path);
  Norvel::Vexa::XC3DPath built(&info), other(&info);
  const float before = built.getTotalLength();
  other.createBezierCurve();
  const bool isDone = attempt([&] { built.createBezierCurve(); });
  require(built.getTotalLength() == (isDone ? other.getTotalLength() : before), "a wrong length");
  require(built.getCurves().size() == built.getProportions().size(), "half a path");
}

void editsAPath(const Attempt& attempt) {
  Path path = scenes::windingPath(3);
  Norvel::Vexa::XCZELPathAgent agent(&path);
  const unsigned before = agent.getNbBezierPoints();
  const bool isDone = attempt([&] { agent.addNewPointAt(1); });
  require(agent.getNbBezierPoints() == before + (isDone ? 1 : 0), "a point that failed counts");
  require(agent.removePointAt(0), "no point can be removed");
}

struct CountingReporter : Norvel::XIReporter {
  void ReportMsg(EMsgType /*type*/, const char* text) override { mLength += std::strlen(text); }
  std::size_t mLength = 0;
};

// `length` characters, or none where there is no memory for them.
void reports(const Attempt& attempt, std::size_t length) {
  CountingReporter reporter;
  const std::string text(length, 'x');
  attempt([&] {
    const Norvel::XStPushReporter scope(&reporter, false);
    Norvel::XCReporter::Warning("%s", text.c_str());
  });
  require(reporter.mLength <= length, "a wrong message");
  Norvel::XCReporter::Warning("to the reporter before");
}

void throwsAText(const Attempt& attempt) {
  const std::string text(5000, 'x');
  require(!attempt([&] { Norvel::UxThrow::SignalFmt("%s", text.c_str()); }), "nothing is thrown");
}

}  // namespace

std::vector<Operation> managerOperations() {
  return {
      {"create a manager",
       [](const Attempt& attempt) { require(attempt([] { makeManager(); }), "creating throws"); }},
      {"register an object", [](const Attempt& a) { registers(a, 0, kFile); }},
      {"register a second instance", [](const Attempt& a) { registers(a, 1, kFile); }},
      {"register an absent file", [](const Attempt& a) { registers(a, 0, "absent.amo"); }},
      {"register by the other folder",
       [](const Attempt& a) { registers(a, 0, "no/walker.amo", "./x"); }},
      {"register by a URL", [](const Attempt& a) { registers(a, 0, "file://walker.amo"); }},
      {"value of a property",
       [](const Attempt& attempt) {
         Scene lamp = scenes::lamp();
         asks(attempt, lamp);
       }},
      {"value of a date",
       [](const Attempt& attempt) {
         Scene calendar = scenes::calendar();
         asks(attempt, calendar);
       }},
      {"position on a path",
       [](const Attempt& attempt) {
         Scene ride = scenes::ride(scenes::windingPath(9));
         asks(attempt, ride);
       }},
      {"position with a look ahead",
       [](const Attempt& attempt) {
         double ahead = 2;
         Scene ride = scenes::ride(scenes::circlePath(9));
         asks(attempt, ride, &ahead);
       }},
      {"show a take frame",
       [](const Attempt& attempt) {
         const auto manager = makeManager();
         Scene parade = scenes::parade(1);
         require(attempt([&] { drive(*manager, parade, 0, 7); }), "showing throws");
         require(parade.mInstances.mElements[0].mState.mCurrentFrame == 7, "another frame");
       }},
      {"walk along a path",
       [](const Attempt& attempt) {
         Walkers walkers(1);
         drives(attempt, walkers, 0);
       }},
      {"walk inside a parent",
       [](const Attempt& attempt) {
         Walkers walkers(2);
         walkers.add(1);
         walkers.mScene.mInstances.mElements[1].mParent = idOf(walkers.mScene, 0);
         drives(attempt, walkers, 1);
       }},
      {"place an anchor",
       [](const Attempt& attempt) {
         Scene scene = scenes::walk(scenes::windingPath(2), 2, 9);
         Instance& child = scene.mInstances.mElements[1];
         child.mParent = idOf(scene, 0);
         const Norvel::Vexa::XCAnimationMgr manager;
         const UxZel::CZelPoint before = child.mAnchor, point{1, 2, 3};
         const bool isDone = attempt([&] { manager.SetAnchorPos(&scene, &child, point); });
         require(isDone || child.mAnchor.x == before.x, "half an anchor");
       }},
      {"pose of an instance",
       [](const Attempt& attempt) {
         Walkers walkers(1);
         attempt([&] { walkers.mManager->GetCurrentDefinition(0, 3, idOf(walkers.mScene, 0)); });
         require(walkers.isKnown(0), "the pose is lost");
       }},
      {"point of an instance",
       [](const Attempt& attempt) {
         Walkers walkers(1);
         const auto& id = idOf(walkers.mScene, 0);
         const auto* vertex =
             walkers.mManager->GetCurrentDefinition(0, 0, id)->GetVerticesArray().data();
         attempt([&] { walkers.mManager->TransformPoint(vertex, 0, 3, id); });
         attempt([&] { walkers.mManager->TransformPoint(0u, 0, 3, id); });
       }},
      {"forget an object",
       [](const Attempt& attempt) {
         Walkers walkers(1);
         const auto* object = walkers.mScene.mDefinitions[0].mAnimatedObject.get();
         attempt([&] { XIAnimationMgr::ForgetAnimatedObject(walkers.mManager.get(), object); });
         require(!walkers.isKnown(0), "still known");
       }},
      {"read an animation file", [](const Attempt& a) { readsAFile(a, ~std::size_t{0}); }},
      {"read a truncated animation file", [](const Attempt& a) { readsAFile(a, 300); }},
      {"add a matrix", addsToACollector},
      {"add a link", addsLinks},
      {"create takes", makesTakes},
      {"compute a definition", computesADefinition},
      {"build a path", buildsAPath},
      {"edit a path", editsAPath},
      {"report a short message", [](const Attempt& a) { reports(a, 5); }},
      {"report a long message", [](const Attempt& a) { reports(a, 5000); }},
      {"throw a text", throwsAText},
  };
}

}  // namespace vexa::faults
