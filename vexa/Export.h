#pragma once

/// Marks what libvexa.so shows to its host; everything else stays hidden.
///
/// The same attribute serves the library and its clients: a client that derives from an exported
/// interface, or catches what the library throws, then shares one vtable and typeinfo with it.
#define VEXA_EXPORT __attribute__((visibility("default")))

// Every result is fixed to the last bit, and the headers compute too. These options let a compiler
// reorder sums, take reciprocals or assume that there is no NaN.
#if defined(__FAST_MATH__) || defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__) || \
    (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__)
#error "Vexa's results are exact: compile without -ffast-math, -Ofast and what they switch on"
#endif
// The x87 unit keeps more digits than float and double have.
#if defined(__FLT_EVAL_METHOD__) && (__FLT_EVAL_METHOD__ == 2 || __FLT_EVAL_METHOD__ == -1)
#error "Vexa's results are exact: compile without x87, that is with -msse2 -mfpmath=sse"
#endif
