# The library as others consume it: headers, libraries, CMake packages and pkg-config files.
#
# Install components: runtime (what a linked program needs), development, command, python.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/vexa")

# vexa_install_targets(<export set> <target>...): libraries of one component of find_package.
function(vexa_install_targets export)
  install(TARGETS ${ARGN} EXPORT ${export}
          LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
                  COMPONENT runtime NAMELINK_COMPONENT development
          ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
  install(EXPORT ${export} NAMESPACE vexa:: DESTINATION "${package_dir}" COMPONENT development)
endfunction()

# vexa_install_room(<name> <target>...): the libraries and public headers of a folder.
function(vexa_install_room name)
  vexa_install_targets(vexa-${name}Targets ${ARGN})
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${name}" DESTINATION "${VEXA_ROOM_HEADERS}"
          COMPONENT development
          FILES_MATCHING PATTERN "*.h" PATTERN "*_internal.h" EXCLUDE PATTERN fixtures EXCLUDE)
endfunction()

install(TARGETS vexa EXPORT vexaTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
                COMPONENT runtime NAMELINK_COMPONENT development
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
        FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
install(TARGETS refhost EXPORT vexaTargets
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
        FILE_SET HEADERS DESTINATION "${VEXA_ROOM_HEADERS}" COMPONENT development)
install(EXPORT vexaTargets NAMESPACE vexa:: DESTINATION "${package_dir}" COMPONENT development)

if(TARGET vexa_formats)
  vexa_install_room(formats vexa_scene_formats vexa_formats)
endif()
if(TARGET vexa_importer)
  vexa_install_room(importer vexa_importer)
endif()
if(TARGET vexa_plot)
  vexa_install_room(plot vexa_plot)
endif()
if(TARGET vexa_scene)
  vexa_install_room(scene vexa_scene_player vexa_scene)
endif()

if(TARGET vexa_c)
  set_target_properties(vexa_c PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS vexa_c EXPORT vexa-cTargets
          LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
                  COMPONENT runtime NAMELINK_COMPONENT development
          FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
  install(EXPORT vexa-cTargets NAMESPACE vexa:: DESTINATION "${package_dir}" COMPONENT development)
endif()
if(TARGET vexa_python)
  # Where the system's Python looks below its prefix: dist-packages for Debian's.
  set(VEXA_PYTHON_DIR "lib/python3/dist-packages" CACHE STRING "Folder of Python modules")
  file(RELATIVE_PATH python_to_lib "${CMAKE_INSTALL_PREFIX}/${VEXA_PYTHON_DIR}/vexa"
       "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(vexa_python PROPERTIES INSTALL_RPATH "$ORIGIN/${python_to_lib}")
  install(TARGETS vexa_python LIBRARY DESTINATION "${VEXA_PYTHON_DIR}/vexa" COMPONENT python)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/python/vexa" DESTINATION "${VEXA_PYTHON_DIR}"
          COMPONENT python FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed")
endif()

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/vexaConfig.cmake.in" "${PROJECT_BINARY_DIR}/vexaConfig.cmake"
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/vexaConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/vexaConfig.cmake" "${PROJECT_BINARY_DIR}/vexaConfigVersion.cmake"
        DESTINATION "${package_dir}" COMPONENT development)

# A pkg-config file finds its prefix from its own place, so an installed tree may be moved.
set(pkgconfig_dir "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH VEXA_PC_PREFIX "${pkgconfig_dir}" "${CMAKE_INSTALL_PREFIX}")
file(RELATIVE_PATH VEXA_PC_LIBDIR "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_LIBDIR}")
file(RELATIVE_PATH VEXA_PC_INCLUDEDIR "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
set(pc_files vexa vexa-refhost)
if(TARGET vexa_c)
  list(APPEND pc_files vexa_c)
endif()
foreach(name ${pc_files})
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
          COMPONENT development)
endforeach()

# A package states its licence in a form of its own.
if(NOT VEXA_PACKAGING)
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
          COMPONENT development)
endif()
install(FILES "${PROJECT_SOURCE_DIR}/docs/scene.schema.json"
              "${PROJECT_SOURCE_DIR}/docs/info.schema.json"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/vexa" COMPONENT command)

# The page's template comes from another build, by scripts/web.
install(FILES "${PROJECT_SOURCE_DIR}/build/web/share/vexa/view.html"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/vexa" COMPONENT command OPTIONAL)

# The libraries are found relative to the program, so the tree may be moved.
if(TARGET vexa_command)
  file(RELATIVE_PATH bin_to_lib "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
  set_target_properties(vexa_command PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
  install(TARGETS vexa_command
          RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT command)
  install(FILES "${PROJECT_BINARY_DIR}/cli/vexa.1${VEXA_MANUAL_SUFFIX}"
          DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT command)
  install(FILES "${PROJECT_BINARY_DIR}/cli/vexa.bash" RENAME vexa
          DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT command)
endif()
