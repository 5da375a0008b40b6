# What an installation holds: two shared libraries, their headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS TVNMath TVNCore EXPORT TVNMathTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TVNMath)
install(EXPORT TVNMathTargets NAMESPACE TVNMath:: DESTINATION ${_package_dir})
configure_package_config_file(cmake/TVNMathConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/TVNMathConfig.cmake
  INSTALL_DESTINATION ${_package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/TVNMathConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/TVNMathConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/TVNMathConfigVersion.cmake
  DESTINATION ${_package_dir})

set(_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH TVNMATH_PKGCONFIG_TO_PREFIX /prefix/${_pkgconfig_dir} /prefix)
configure_file(cmake/tvnmath.pc.in ${CMAKE_CURRENT_BINARY_DIR}/tvnmath.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tvnmath.pc DESTINATION ${_pkgconfig_dir})
