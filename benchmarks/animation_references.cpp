#include "benchmarks/animation_references.h"

#include <initializer_list>

namespace vexa::benchmarks {

int sumOfKeyFrames(const UxZel::IZelInterpolatedValue& value) {
  const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* keys = value.GetKeyFrames();
  int sum = 0;
  for (int i = 0, count = keys->GetCount(); i < count; ++i) sum += keys->GetAt(i)->GetFrame();
  return sum;
}

namespace {

// A host has no search by identifier: whoever needs a path asks each for its own.
const UxZel::IZel3DPath* pathOf(const UxZel::IZelMgr& mgr, const UxZel::CZelUUID& id) {
  const UxZel::TZelObjectMgr<UxZel::IZel3DPath>* paths = mgr.Get3DPaths();
  for (int i = 0, count = paths->GetCount(); i < count; ++i) {
    const UxZel::IZel3DPath* path = paths->GetAt(i);
    if (*path->GetIdentity()->GetUUID() == id) return path;
  }
  return nullptr;
}

// As building a path reads them: a position, then for each control point its offset and the
// position again. The first point has no control before it.
double sumOfPoints(const UxZel::IZel3DPath& path) {
  const UxZel::TZelObjectMgr<UxZel::IZelBezierPoint>* points = path.GetBezierPoints();
  double sum = 0;
  for (int i = 0, count = points->GetCount(); i < count; ++i) {
    sum += points->GetAt(i)->GetPassagePoint()->x;
    for (const bool before : {true, false}) {
      if (before && i == 0) continue;
      const UxZel::IZelBezierPoint* point = points->GetAt(i);
      const auto* offset =
          before ? point->GetBeforeControlOffset() : point->GetAfterControlOffset();
      sum += offset->x + point->GetPassagePoint()->x;
    }
  }
  return sum;
}

}  // namespace

double callHost(const UxZel::IZelMgr& mgr, const UxZel::IZelInterpolatedValue& value,
                UxZel::IZelObjectInstance& instance,
                const UxZel::IZelZelObjectDefinition& definition) {
  double read = double(value.GetPropertyType()) + value.IsCyclic();
  const auto* keys = value.GetKeyFrames();
  read += keys->GetCount() + keys->GetAt(0)->GetFrame() + keys->GetAt(1)->GetFrame();
  UxZel::IZelAnimationState* state = instance.GetAnimationState();
  read += state->GetTakeIndex() + mgr.GetSettingsList()->GetCount() +
          mgr.GetSettingsList()->GetAt(0)->GetTimeScale();
  read += sumOfPoints(*pathOf(mgr, *value.GetPathUUID()));
  const UxZel::IZelAnimatedObject* object = definition.GetAnimatedObject();
  const UxZel::IZelTake* take = object->GetTakes()->GetAt(0);
  read += take->GetFrameCount() + take->GetFrameRate() + object->GetAnimationKind() +
          object->GetAnchorVertex() + take->GetElevation() + instance.GetParentUUID()->mWords[0];
  // The sum goes into a setter, so that no compiler drops what was read.
  const UxZel::CZelPoint point{read, 2, 3};
  const UxZel::CZelVector direction{1, 0, 0};
  instance.SetRotation(*instance.GetScale());
  instance.SetDirection(&direction);
  instance.SetPosition(&point);
  instance.SetAnchor(&point);
  state->SetStartOffset(state->GetStartOffset());
  return read;
}

}  // namespace vexa::benchmarks
