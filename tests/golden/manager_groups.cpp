// The manager's work on instances: frames, places, matrices, registered objects.
#include <cmath>
#include <memory>

#include "refhost/Scene.h"
#include "refhost/scenes/paths.h"
#include "tests/golden/Group.h"
#include "tests/golden/QuietErrors.h"
#include "tests/golden/RecordingInstance.h"
#include "tests/golden/animation_bytes.h"
#include "tests/golden/meshes.h"
#include "tests/helpers/managed.h"
#include "tests/helpers/recording_reporter.h"
#include "tests/helpers/scratch_directory.h"

namespace vexa::tests {

namespace {

using namespace Norvel::Vexa;
using uValue = UxZel::IZelKeyFrame::uValue;
using Matrix44 = ux_matrix44<double>;

void outFrame(Recorder& r, const uValue& value) {
  uValue rest = value;
  rest.mInteger = 0;
  r.out(value.mInteger, rest);
}

// A scene of one animated object and one or two instances of it, the first in the place where it is
// found.
refhost::Scene drawScene(Numbers& n, bool isHostile) {
  refhost::Scene scene;
  const auto small = [&](int low, int high) {
    return isHostile && n.oneIn(12) ? n.anyInt() : n.between(low, high);
  };
  scene.mSettings.mElements[0].mTimeScale = small(n.oneIn(20) ? 0 : 1, 40);
  if (n.oneIn(40)) scene.mSettings.mElements.clear();
  refhost::Definition definition;
  definition.mSizes.mElevation = n.plain<double>();
  auto object = std::make_unique<refhost::AnimatedObject>();
  for (int takes = n.between(1, 3); takes > 0; --takes) {
    refhost::Take& take = object->mTakes.add();
    take.mFrameCount = small(n.oneIn(20) ? 0 : 1, 30);
    take.mFrameRate = small(n.oneIn(20) ? 0 : 1, 40);
    take.mElevation = n.oneIn(2) ? 0 : n.plain<double>();
  }
  if (!n.oneIn(20)) definition.mAnimatedObject = std::move(object);
  scene.mDefinitions.push_back(std::move(definition));
  for (std::uint32_t i = 1; i <= 3; ++i) {
    refhost::Instance& instance = scene.mInstances.add();
    instance.mIdentity.mUUID = refhost::numberedUUID(i);
    instance.mDefinition = 0;
    if (i == 2) instance.mParent = refhost::numberedUUID(n.oneIn(2) ? 1 : n.below(4));
    instance.mPosition = {n.plain<double>(), n.plain<double>(), n.plain<double>()};
    instance.mRotation = n.oneIn(3) ? 0 : n.plain<double>();
    for (double& s : instance.mScale) s = n.oneIn(2) ? 1 : n.plain<double>();
    if (n.oneIn(2)) instance.mDirection = {n.plain<double>(), n.plain<double>(), n.plain<double>()};
    if (n.oneIn(4)) instance.mClassName = n.oneIn(2) ? "Billboard" : "3DPlantGroupInstances";
    instance.mBillboardEnabled = n.oneIn(2);
    instance.mPlantGroupFlag = n.oneIn(2);
    instance.mState.mTakeIndex = n.oneIn(20) ? n.below(5) : (n.oneIn(3) ? 1 : 0);
    instance.mState.mFrameOffset = n.oneIn(2) ? 0 : small(-30, 60);
    instance.mState.mStartOffset = small(-2, 60);
    instance.mState.mCurrentFrame = n.between(0, 3);
  }
  return scene;
}

refhost::Property drawProperty(Numbers& n, unsigned int type, bool isHostile) {
  refhost::Property property;
  property.mPropertyType = type;
  property.mCyclic = n.oneIn(2);
  property.mRepeatCount = isHostile && n.oneIn(9) ? n.anyInt() : n.between(0, 4);
  int frame = n.between(0, 20);
  for (int keys = n.oneIn(20) ? n.between(0, 1) : 2; keys > 0; --keys) {
    property.mKeys.add(refhost::integerKey(frame, n.between(0, 99)));
    frame += n.oneIn(20) ? 0 : n.between(1, 120);
  }
  property.mPath = refhost::numberedUUID(50);
  return property;
}

void inScene(Recorder& r, const refhost::Scene& scene, const refhost::Property& property) {
  for (const auto& settings : scene.mSettings.mElements) r.in("scale", settings.mTimeScale);
  if (scene.mDefinitions[0].mAnimatedObject) {
    for (const refhost::Take& take : scene.mDefinitions[0].mAnimatedObject->mTakes.mElements) {
      r.in("frames", take.mFrameCount).in("rate", take.mFrameRate).in("up", take.mElevation);
    }
  }
  const refhost::Instance& it = scene.mInstances.mElements[1];
  r.in("at", it.mPosition).in("rotation", it.mRotation).in("take", it.mState.mTakeIndex);
  r.in("offset", it.mState.mFrameOffset).in("start", it.mState.mStartOffset);
  r.in("cyclic", property.mCyclic).in("repeats", property.mRepeatCount);
  for (const auto& key : property.mKeys.mElements) r.in("key", key.mFrame);
}

void runSelection(Recorder& r) {
  Numbers& n = r.numbers();
  const XCAnimationMgr manager;
  for (int i = 0; i < 4000; ++i) {
    r.begin();
    const bool isHostile = n.oneIn(4);
    refhost::Scene scene = drawScene(n, isHostile);
    const refhost::Property property = drawProperty(n, UxZel::kPropertyAnimatedFrame, isHostile);
    const int frame = isHostile && n.oneIn(3) ? n.anyInt() : n.between(-2, 300);
    const int speed = n.oneIn(3) ? -1 : n.oneIn(3) ? 0 : n.between(1, 90);
    const bool wraps = n.oneIn(2), adds = n.oneIn(2);
    inScene(r, scene, property);
    r.in("frame", frame).in("speed", speed).in("wraps", wraps).in("adds", adds);
    int cycles = 77;
    r.outOf([&] {
      outFrame(r, manager.GetAnimatedObjectFrame(&scene, &scene.mInstances.mElements[1],
                                                 &scene.mDefinitions[0], &property, frame, cycles,
                                                 speed, wraps, adds));
    });
    r.out(cycles);
  }
}

// Gives the object of a scene a mesh, and its animation as a file; the anchor moves from frame to
// frame.
void giveMesh(Numbers& n, refhost::AnimatedObject& object, const std::string& path) {
  const unsigned int points = n.below(6) + 3;
  for (unsigned int p = 0; p < points; ++p) {
    object.mPoints.add({n.plain<double>(), n.plain<double>(), n.plain<double>()});
  }
  for (unsigned int p = n.below(5); p > 0; --p) {
    const unsigned int a = n.below(points), b = n.below(points), c = n.below(points);
    refhost::Polygon& polygon = object.mPolygons.add(refhost::triangle(a, b, c, drawMaterial(n)));
    if (n.oneIn(3)) polygon.mCorners.mElements[n.below(3)].mU = n.plain<float>();
    if (n.oneIn(3)) polygon.mCorners.mElements[n.below(3)].mV = n.plain<float>();
    if (n.oneIn(5)) polygon.mCorners.add().mPointIndex = 9999;
  }
  object.mAnchorVertex = n.below(points + (n.oneIn(20) ? 2 : 0));
  DrawnAnimation drawn = drawAnimation(n, points, false);
  for (auto& frames : drawn.mFrames) frames = std::max(frames, 1u);
  for (auto& node : drawn.mNodes) {
    for (auto& take : node) {
      if (take.empty()) take.push_back(drawNodeMatrix(n, false));
    }
  }
  writeText(path, drawn.bytes().mBytes);
}

void runRegistered(Recorder& r) {
  Numbers& n = r.numbers();
  const ScratchDirectory scratch;
  RecordingReporter reporter;
  const Norvel::XStPushReporter scope(&reporter, false);
  const auto manager = makeManager();
  std::vector<std::unique_ptr<refhost::AnimatedObject>> objects;  // the manager knows the addresses
  for (std::uint32_t i = 0; i < 60; ++i) {
    r.begin();
    auto& object = *objects.emplace_back(std::make_unique<refhost::AnimatedObject>());
    const std::string path = scratch / std::to_string(i);
    giveMesh(n, object, path);
    object.mAnimationKind = n.oneIn(9) ? 1 : 0;
    refhost::Instance instance;
    instance.mIdentity.mUUID = {{n.below(2), n.below(2), n.below(2), i + 1}};
    const UxZel::CZelUUID id = instance.mIdentity.mUUID;
    r.in("points", object.mPoints.GetCount()).in("polygons", object.mPolygons.GetCount());
    manager->RegisterAnimatedObject(&instance, &object, path.c_str(), "", &object.mPoints,
                                    &object.mPolygons);
    for (unsigned int frame = 0; frame < 3; ++frame) {
      const UXS::Mesh* const mesh = manager->GetCurrentDefinition(0, frame, id);
      r.out(mesh != nullptr);
      if (mesh != nullptr) outMesh(r, *mesh);
    }
    const Oru::TVector3D<float> elsewhere(1, 2, 3);
    r.out(manager->TransformPoint(0u, 0, 0, id), manager->TransformPoint(&elsewhere, 0, 0, {}));
    for (int w = 0; w < 4; ++w) {
      UxZel::CZelUUID other = id;
      other.mWords[w] ^= 4;
      r.out(manager->GetCurrentDefinition(0, 0, other) != nullptr);
    }
  }
}

// Frame by frame, what is set on an instance, and in which order. Its parents are left out: they
// have groups of their own.
void runDriving(Recorder& r, bool walks, bool usesPaths) {
  const QuietErrors quiet;
  Numbers& n = r.numbers();
  const ScratchDirectory scratch;
  const auto manager = makeManager();
  std::vector<std::unique_ptr<refhost::Scene>> scenes;  // the manager knows their objects
  for (int i = 0; i < 150; ++i) {
    refhost::Scene& scene =
        *scenes.emplace_back(std::make_unique<refhost::Scene>(drawScene(n, n.oneIn(6))));
    refhost::Instance& instance = scene.mInstances.mElements[1];
    instance.mParent = {};
    const refhost::Definition& definition = scene.mDefinitions[0];
    if (definition.mAnimatedObject && n.below(6) != 0) {
      refhost::AnimatedObject& object = *definition.mAnimatedObject;
      const std::string path = scratch / std::to_string(i);
      giveMesh(n, object, path);
      manager->RegisterAnimatedObject(&instance, &object, path.c_str(), "", &object.mPoints,
                                      &object.mPolygons);
    }
    if (usesPaths && !n.oneIn(12)) {
      auto path = n.oneIn(2) ? refhost::scenes::circlePath(20) : refhost::scenes::windingPath(4);
      path.mIdentity.mUUID = refhost::numberedUUID(50);
      for (auto& point : path.mPoints.mElements) point.mPassage.z = n.plain<double>();
      scene.mPaths.add(refhost::scenes::straightPath(5)).mIdentity.mUUID = {{0, 0, 1, 50}};
      scene.mPaths.add(std::move(path));
    }
    const unsigned int type = n.oneIn(20) ? 134 : walks ? 136 : 135;
    const refhost::Property property = drawProperty(n, type, false);
    for (int k = 0; k < 8; ++k) {
      r.begin();
      const int frame = n.between(-1, 200);
      inScene(r, scene, property);
      r.in("frame", frame);
      RecordingInstance recording(instance);
      UxZel::CZelVector direction{7, 8, 9};
      outFrame(r, manager->ManageAnimatedObjectInstance(&scene, &recording, &definition, &property,
                                                        frame, k % 3 == 0 ? nullptr : &direction));
      r.out(direction, recording.mCalls, instance.mRotation, instance.mDirection);
      r.out(instance.mPosition, instance.mAnchor, instance.mState.mCurrentFrame);
    }
  }
}

// Requests for positions, one after the other, on a few paths that change now and then.
void runRides(Recorder& r) {
  const QuietErrors quiet;
  Numbers& n = r.numbers();
  const auto manager = makeManager();
  refhost::Scene scene;
  for (std::uint32_t p = 1; p <= 3; ++p) {
    refhost::Path& path = scene.mPaths.add(refhost::scenes::windingPath(int(p) * 2));
    path.mIdentity.mUUID = refhost::numberedUUID(p);
  }
  for (int i = 0; i < 2000; ++i) {
    r.begin();
    refhost::Path& path = scene.mPaths.mElements[n.below(3)];
    if (n.oneIn(4)) {
      auto& points = path.mPoints.mElements;
      refhost::BezierPoint& point = points[n.below(std::uint32_t(points.size()))];
      const double step = n.plain<double>();
      const std::uint32_t what = n.below(4);
      if (what == 0) point.mPassage.y += step;
      if (what == 1) point.mBefore.x += step;
      if (what == 2) point.mAfter.z += step;
      if (what == 3 && points.size() < 12) points.push_back(point);
    }
    refhost::Property place;
    place.mPropertyType = n.oneIn(2) ? 1 : n.oneIn(2) ? 38 : 59;
    place.mPath = refhost::numberedUUID(n.below(4));
    const double from = n.unit<double>(), to = n.unit<double>();
    place.mKeys.add(refhost::realKey(0, from));
    place.mKeys.add(refhost::realKey(n.oneIn(9) ? 0 : 20, to));
    const int frame = n.between(0, 20);
    double rate = n.unit<double>() * 10;
    r.in("path", place.mPath.mWords[3]).in("from", from).in("frame", frame).in("rate", rate);
    UxZel::CZelVector direction{7, 8, 9};
    double* const ahead = n.oneIn(3) ? &rate : nullptr;
    const uValue at = manager->InterpolateValue(&scene, &place, frame, &direction, ahead);
    r.out(at.mVector[0], at.mVector[1], at.mVector[2], direction);
  }
}

void runAnchors(Recorder& r) {
  Numbers& n = r.numbers();
  const ScratchDirectory scratch;
  const auto manager = makeManager();
  auto& own = static_cast<XCAnimationMgr&>(*manager);
  std::vector<std::unique_ptr<refhost::Scene>> scenes;
  for (int i = 0; i < 150; ++i) {
    r.begin();
    refhost::Scene& scene =
        *scenes.emplace_back(std::make_unique<refhost::Scene>(drawScene(n, false)));
    refhost::Instance& instance = scene.mInstances.mElements[1];
    const refhost::Definition& definition = scene.mDefinitions[0];
    if (definition.mAnimatedObject && n.below(6) != 0) {
      refhost::AnimatedObject& object = *definition.mAnimatedObject;
      const std::string path = scratch / std::to_string(i);
      giveMesh(n, object, path);
      manager->RegisterAnimatedObject(&instance, &object, path.c_str(), "", &object.mPoints,
                                      &object.mPolygons);
    }
    if (definition.mAnimatedObject && n.oneIn(6)) {
      definition.mAnimatedObject->mAnimationKind = n.between(1, 2);
    }
    inScene(r, scene, {});
    for (int frame = -1; frame < 4; ++frame) {
      r.outOf([&] { return own.GetAEAnchorPos(&scene, &instance, &definition, frame); });
    }
  }
}

void runTransforms(Recorder& r) {
  Numbers& n = r.numbers();
  const XCAnimationMgr manager;
  using Tool = UxZel::CZelObjectInstanceTool;
  for (int i = 0; i < 2500; ++i) {
    r.begin();
    refhost::Scene scene = drawScene(n, false);
    const std::uint32_t which = n.below(3);
    refhost::Instance& instance = scene.mInstances.mElements[which];
    if (n.oneIn(20)) instance.mParent = instance.mIdentity.mUUID;
    Matrix44 parent;
    for (double& e : parent.e) e = n.oneIn(3) ? n.plain<double>() : e;
    const UxZel::CZelPoint viewer{n.plain<double>(), n.plain<double>(), n.plain<double>()};
    const UxZel::CZelVector direction{n.plain<double>(), n.any<double>(), n.plain<double>()};
    const bool hasViewer = n.oneIn(2), isPlant = n.oneIn(2), isLast = n.oneIn(2);
    const float scale = n.oneIn(2) ? 1 : n.plain<float>();
    r.in("position", instance.mPosition).in("rotation", instance.mRotation);
    r.in("direction", instance.mDirection).in("class", instance.mClassName);
    r.in("parent", parent).in("viewer", viewer).in("scale", scale);
    r.out(Tool::getHeading(instance.mRotation, direction));
    r.outOf([&] {
      return Tool::getObjectTransformToWorld(&instance, scale, parent,
                                             hasViewer ? &viewer : nullptr, &viewer, false, false,
                                             isPlant, isLast);
    });
    r.outOf([&] { return manager.GetLocal2WorldMatrix(&scene, &instance); });
    r.outOf([&] { manager.SetAnchorPos(&scene, &instance, viewer); });
    r.out(instance.mAnchor);
    for (std::uint32_t id = 0; id < 4; ++id) {
      r.out(manager.GetZelObjectInstance(&scene, refhost::numberedUUID(id)) != nullptr);
    }
  }
}

void runHostMatrices(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 500; ++i) {
    r.begin();
    UxZel::CZelMatrix m;
    for (auto& row : m.mElements) {
      for (double& e : row) e = n.any<double>();
    }
    r.in("m", m);
    r.out(Zel2UxWorks(m), UxWorks2Zel(Zel2UxWorks(m)), UxZel::CZelMatrix());
  }
}

void runIdentities(Recorder& r) {
  Numbers& n = r.numbers();
  for (int i = 0; i < 2000; ++i) {
    r.begin();
    UxZel::CZelUUID a, b;
    for (std::uint32_t& word : a.mWords) word = n.below(3) * 0x7FFFFFFFu;
    b = a;
    if (n.oneIn(2)) b.mWords[n.below(4)] = n.below(3) * 0x7FFFFFFFu;
    for (int w = 0; w < 4; ++w) r.in("a", a.mWords[w]).in("b", b.mWords[w]);
    r.out(a == b, a != b, a < b, b < a, isNone(a));
  }
}

}  // namespace

void addManagerGroups(Groups& out) {
  const auto add = [&](const char* name, Kind kind, auto run) { out.push_back({name, kind, run}); };
  add("identities", Kind::kArithmetic, runIdentities);
  add("frame_selection", Kind::kArithmetic, runSelection);
  add("registered_meshes", Kind::kArithmetic, runRegistered);
  add("driving_frames", Kind::kArithmetic, [](Recorder& r) { runDriving(r, false, false); });
  add("driving_walks", Kind::kLibm, [](Recorder& r) { runDriving(r, true, true); });
  add("positions_by_the_manager", Kind::kArithmetic, runRides);
  add("anchors", Kind::kArithmetic, runAnchors);
  add("instance_transforms", Kind::kLibm, runTransforms);
  add("host_matrices", Kind::kArithmetic, runHostMatrices);
}

}  // namespace vexa::tests
