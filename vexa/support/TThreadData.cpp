#include "vexa/support/TThreadData.h"

#include "vexa/support/UxThrow.h"
#include "vexa/support/XCReporter.h"

namespace Norvel {

// No destructor is given with the key: the values are borrowed, and none is freed at a thread's
// end.
CBaseThreadData::CBaseThreadData() {
  UxThrow::IfFalse(pthread_key_create(&mKey, nullptr) == 0,
                   "CBaseThreadData::CBaseThreadData - Can't get thread data");
}

CBaseThreadData::~CBaseThreadData() {
  if (pthread_key_delete(mKey) != 0) {
    XCReporter::Error("CBaseThreadData::~CBaseThreadData - Error while deleting a thread data");
  }
}

void* CBaseThreadData::GetValue() const { return pthread_getspecific(mKey); }

// NOLINTNEXTLINE(readability-make-member-function-const): it changes what GetValue returns.
void CBaseThreadData::SetValue(const void* value) {
  UxThrow::IfFalse(pthread_setspecific(mKey, value) == 0, "CBaseThreadData::SetValue");
}

}  // namespace Norvel
