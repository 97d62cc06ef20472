#include "benchmarks/animation_references.h"

namespace vexa::benchmarks {

int sumOfKeyFrames(const UxZel::IZelInterpolatedValue& value) {
  const UxZel::TZelObjectMgr<UxZel::IZelKeyFrame>* keys = value.GetKeyFrames();
  int sum = 0;
  for (int i = 0, count = keys->GetCount(); i < count; ++i) sum += keys->GetAt(i)->GetFrame();
  return sum;
}

}  // namespace vexa::benchmarks
