#pragma once

#include "vexa/Export.h"

namespace UXS {

/// The wall clock in seconds since 1 January 1970, UTC, in steps of a microsecond.
///
/// Not monotonic: it follows corrections of the system's clock.
VEXA_EXPORT double get_time();

}  // namespace UXS
