#pragma once

#include "vexa/Export.h"
#include "vexa/host/IZelKeyFrame.h"

/// The value of a property between two of its keys.
///
/// Every function below writes the bytes of its result into `out` and no others; whoever reads
/// all 24 bytes clears `out` first. A held value is all 24 bytes of the first key's. Keys at one
/// frame give the first key's value. By the first key's value type:
///
///   type          Lerp           Sqerp          OneMinSqerp    Sinerp
///   0 vector      yes            yes            yes            yes      in float, per component
///   1 colour      yes            yes            yes            yes      in float, as 0..1
///   2 real        yes            yes            yes            yes
///   4 integer     yes            yes            yes            yes
///   5 date        as long        as double      held           held     low 32 bits, 4 bytes
///   7 step        second's bits from its frame on; held by the other curves
///   any other     held           held           held           held
///
/// Required behaviour: the uneven rows for dates and steps. Each throws std::runtime_error with the
/// text of its timed curve when `frame` lies outside of both keys.
namespace Norvel::Vexa {

VEXA_EXPORT void Lerp(UxZel::IZelKeyFrame* first, UxZel::IZelKeyFrame* second, int frame,
                      UxZel::IZelKeyFrame::uValue& out);
VEXA_EXPORT void Sqerp(UxZel::IZelKeyFrame* first, UxZel::IZelKeyFrame* second, int frame,
                       UxZel::IZelKeyFrame::uValue& out);
VEXA_EXPORT void OneMinSqerp(UxZel::IZelKeyFrame* first, UxZel::IZelKeyFrame* second, int frame,
                             UxZel::IZelKeyFrame::uValue& out);
VEXA_EXPORT void Sinerp(UxZel::IZelKeyFrame* first, UxZel::IZelKeyFrame* second, int frame,
                        UxZel::IZelKeyFrame::uValue& out);

/// A date between two dates, by XCDateInterpolation: whole seconds in the first 8 bytes, the rest
/// zero. Any other value type is held. Required behaviour: dates pass through 32-bit signed
/// seconds, held ones too; frames pass through float.
VEXA_EXPORT void Daterp(UxZel::IZelKeyFrame* first, UxZel::IZelKeyFrame* second, int frame,
                        UxZel::IZelKeyFrame::uValue& out);

/// The value at `frame` by the curve that `forcedType` names, or the first key where that is
/// negative (see UxZel::EInterpolationType); codes without a curve hold. A failing curve throws
/// std::runtime_error "XCInterpolation - uxInterpolate an error was detected".
VEXA_EXPORT void uxInterpolate(UxZel::IZelKeyFrame* first, UxZel::IZelKeyFrame* second, int frame,
                               UxZel::IZelKeyFrame::uValue& out, int forcedType);

}  // namespace Norvel::Vexa
