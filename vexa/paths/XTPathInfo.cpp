#include "vexa/paths/XTPathInfo.h"

namespace Norvel::Vexa {

template class XTPathInfo<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

}  // namespace Norvel::Vexa
