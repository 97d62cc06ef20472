# Debian packages by CPack, one per install component; scripts/package builds and tries them.
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development command python)
set(CPACK_PACKAGE_CONTACT "Vexa maintainers <vexa@packages.debian.org>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# Where dpkg-shlibdeps finds our own libraries, which no installed package has yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/vexa" "${PROJECT_BINARY_DIR}/c")

set(same "= ${PROJECT_VERSION}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvexa0)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvexa-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libvexa0 (${same})")
# What the components of find_package need; the library itself needs nothing.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS
    "nlohmann-json3-dev, libtinyobjloader-dev, libtinygltf-dev, libassimp-dev, libcairo2-dev")
set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME vexa)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "libvexa0 (${same})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-vexa)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
math(EXPR next "${Python3_VERSION_MINOR} + 1")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "libvexa0 (${same}), python3-numpy, python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next})")

set(about "Vexa says for a frame number what a keyframed property is worth, where an object is on a
 path, which frame of its animation an instance shows, and what a skinned mesh then looks like.")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "animation runtime for 3D hosts - libraries\n${about}\n .\n This package has the shared libraries for C++ and C.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "animation runtime for 3D hosts - development files\n${about}\n .\n This package has the headers, the static components, and what CMake and\n pkg-config read.")
set(CPACK_COMPONENT_COMMAND_DESCRIPTION "animation runtime for 3D hosts - command\n${about}\n .\n This package has the command, which imports models and plays scenes.")
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "animation runtime for 3D hosts - Python 3 module\n${about}\n .\n This package has the module, which works on numpy arrays.")

# Each package states its copyright and its changes.
configure_file("${PROJECT_SOURCE_DIR}/cmake/copyright.in" "${PROJECT_BINARY_DIR}/packaging/copyright" @ONLY)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component RUNTIME DEVELOPMENT COMMAND PYTHON)
  set(package ${CPACK_DEBIAN_${component}_PACKAGE_NAME})
  set(folder "${PROJECT_BINARY_DIR}/packaging/${package}")
  file(WRITE "${folder}/changelog" "${package} (${PROJECT_VERSION}) unstable; urgency=medium\n
  * Built from the sources; CHANGELOG.md has the changes.\n
 -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
  execute_process(COMMAND gzip -9nf "${folder}/changelog" COMMAND_ERROR_IS_FATAL ANY)
  string(TOLOWER ${component} name)
  install(FILES "${folder}/changelog.gz" "${PROJECT_BINARY_DIR}/packaging/copyright"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${name})
endforeach()
file(WRITE "${PROJECT_BINARY_DIR}/packaging/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/packaging/triggers")

include(CPack)
