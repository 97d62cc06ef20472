#pragma once

#include "vexa/Export.h"
#include "vexa/host/CZelMatrix.h"
#include "vexa/math/ux_matrix44.h"

/// The host's matrices, row after row, as the library's, and back.
namespace Norvel::Vexa {

/// Keeps rows and columns: element (r, c) of the host's matrix becomes element (r, c).
VEXA_EXPORT ux_matrix44<double> Zel2UxWorks(const UxZel::CZelMatrix& matrix);

/// Required behaviour: transposes, so that UxWorks2Zel(Zel2UxWorks(m)) is the transpose of m.
VEXA_EXPORT UxZel::CZelMatrix UxWorks2Zel(const ux_matrix44<double>& matrix);

}  // namespace Norvel::Vexa
