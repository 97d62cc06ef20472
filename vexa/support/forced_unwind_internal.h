#pragma once

#include <cstddef>

#if defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

namespace Norvel {

// What unwinds a cancelled thread: it may be caught, but must go on, or the process ends. Only the
// GNU library throws it as an exception; elsewhere this type stands for nothing that is thrown.
#if defined(__GLIBCXX__)
using ForcedUnwind = abi::__forced_unwind;
#else
struct ForcedUnwind {};
#endif

}  // namespace Norvel
