#pragma once

// tinygltf under a namespace of our own, compiled in tinygltf.cpp. libdraco, which libassimp needs,
// exports an older tinygltf; under one name the linker would mix the two.
#define tinygltf vexa_tinygltf
#define TINYGLTF_NO_STB_IMAGE
#define TINYGLTF_NO_STB_IMAGE_WRITE
#define TINYGLTF_NO_EXTERNAL_IMAGE
#include <tiny_gltf.h>
