#pragma once

/// Marks what libvexa.so shows to its host; everything else stays hidden.
///
/// The same attribute serves the library and its clients: a client that derives from an exported
/// interface, or catches what the library throws, then shares one vtable and typeinfo with it.
#define VEXA_EXPORT __attribute__((visibility("default")))
