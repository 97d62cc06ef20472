#include "vexa/paths/XTPathAgent.h"

namespace Norvel::Vexa {

template class XTPathAgent<UXS::uxs_generic_vec3<float>, UXS::uxs_generic_vec3<float>, float>;

}  // namespace Norvel::Vexa
