# The header-only packages of the host, for a cross compiler that searches its own sysroot only.
# They come through a folder of links: /usr/include itself would hide the cross compiler's headers.
find_path(VEXA_HOST_INCLUDE nlohmann/json.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(headers "${PROJECT_BINARY_DIR}/headers")
file(MAKE_DIRECTORY "${headers}")
foreach(name nlohmann tiny_obj_loader.h)
  file(CREATE_LINK "${VEXA_HOST_INCLUDE}/${name}" "${headers}/${name}" SYMBOLIC)
endforeach()

add_library(nlohmann_json INTERFACE)
add_library(nlohmann_json::nlohmann_json ALIAS nlohmann_json)
target_include_directories(nlohmann_json SYSTEM INTERFACE "${headers}")

file(WRITE "${headers}/tiny_obj_loader.cc"
     "#define TINYOBJLOADER_IMPLEMENTATION\n#include <tiny_obj_loader.h>\n")
add_library(tinyobjloader STATIC "${headers}/tiny_obj_loader.cc")
add_library(tinyobjloader::tinyobjloader ALIAS tinyobjloader)
target_include_directories(tinyobjloader SYSTEM PUBLIC "${headers}")
