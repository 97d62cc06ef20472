#include "vexa/support/clock.h"

#include <sys/time.h>

namespace UXS {

double get_time() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return double(now.tv_sec) + double(now.tv_usec) * 1e-6;
}

}  // namespace UXS
