# Installation: library, header, programs, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)
install(TARGETS tarvik EXPORT tarvikTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT tarvikTargets NAMESPACE tarvik:: FILE tarvikTargets.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/tarvik)
configure_package_config_file(cmake/tarvikConfig.cmake.in ${CMAKE_BINARY_DIR}/tarvikConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/tarvik)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/tarvikConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/tarvikConfig.cmake ${CMAKE_BINARY_DIR}/tarvikConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/tarvik)
# Relative to itself, so that an installed tree may be moved.
file(RELATIVE_PATH TARVIK_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" TARVIK_PC_TO_PREFIX "${TARVIK_PC_TO_PREFIX}")
configure_file(cmake/tarvik.pc.in ${CMAKE_BINARY_DIR}/tarvik.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/tarvik.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
