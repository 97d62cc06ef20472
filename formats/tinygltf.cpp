#define TINYGLTF_IMPLEMENTATION
#include "formats/tinygltf_internal.h"
