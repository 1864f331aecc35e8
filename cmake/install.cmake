# Install rules, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS lyrsr EXPORT lyrsrTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
                                                  NAMELINK_COMPONENT Development)
install(TARGETS lyrcore EXPORT lyrsrTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(FILES include/lyrsr.h DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")

set(LYRSR_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/lyrsr")
install(EXPORT lyrsrTargets NAMESPACE lyrsr:: DESTINATION "${LYRSR_CMAKE_DIR}")
configure_package_config_file(cmake/lyrsrConfig.cmake.in "${PROJECT_BINARY_DIR}/lyrsrConfig.cmake"
                              INSTALL_DESTINATION "${LYRSR_CMAKE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/lyrsrConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/lyrsrConfig.cmake" "${PROJECT_BINARY_DIR}/lyrsrConfigVersion.cmake"
        DESTINATION "${LYRSR_CMAKE_DIR}")

# Relative to its own place, so that an install prefix may be moved.
file(RELATIVE_PATH LYRSR_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/lyrsr.pc.in "${PROJECT_BINARY_DIR}/lyrsr.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/lyrsr.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
