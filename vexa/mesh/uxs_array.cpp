#include "vexa/mesh/uxs_array.h"

namespace UXS {

template class uxs_array<unsigned int, unsigned int>;
template class uxs_array<uxs_generic_mat4<float>, unsigned int>;

}  // namespace UXS
