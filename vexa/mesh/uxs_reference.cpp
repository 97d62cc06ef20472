#include "vexa/mesh/uxs_reference.h"

namespace UXS {

bool uxs_reference::_is_final_renderer = false;

// Required behaviour: while the switch is set, no count changes and no object goes.
void uxs_reference::increment() const {
  if (!_is_final_renderer) mReferenceCount.fetch_add(1);
}

void uxs_reference::decrement() const {
  if (!_is_final_renderer && mReferenceCount.fetch_sub(1) == 1) delete this;
}

uxs_reference::~uxs_reference() = default;

}  // namespace UXS
