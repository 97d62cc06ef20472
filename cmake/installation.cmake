# The library as others consume it: headers, libraries, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS vexa refhost EXPORT vexaTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT vexaTargets NAMESPACE vexa::
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/vexa")

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/vexaConfig.cmake.in" "${PROJECT_BINARY_DIR}/vexaConfig.cmake"
  INSTALL_DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/vexa")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/vexaConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/vexaConfig.cmake" "${PROJECT_BINARY_DIR}/vexaConfigVersion.cmake"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/vexa")

configure_file("${PROJECT_SOURCE_DIR}/cmake/vexa.pc.in" "${PROJECT_BINARY_DIR}/vexa.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vexa.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
