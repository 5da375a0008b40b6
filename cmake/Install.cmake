# What an installation holds: two shared libraries, and for those who build with them the headers, a CMake package and a
# pkg-config file. The component "runtime" is what a machine needs that only runs programs, "development" the rest.
if(NOT TVNMATH_INSTALL)
  return()
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The libraries find each other in whatever folder they lie, also when the program names one of them only. That holds
# whatever a parent project says about run paths.
set_target_properties(TVNMath TVNCore PROPERTIES INSTALL_RPATH "$ORIGIN" INSTALL_RPATH_USE_LINK_PATH OFF)

install(TARGETS TVNMath TVNCore EXPORT TVNMathTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TVNMath)
install(EXPORT TVNMathTargets NAMESPACE TVNMath:: DESTINATION ${_package_dir} COMPONENT development)
configure_package_config_file(cmake/TVNMathConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/TVNMathConfig.cmake
  INSTALL_DESTINATION ${_package_dir})
configure_file(cmake/TVNMathConfigVersion.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/TVNMathConfigVersion.cmake @ONLY)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/TVNMathConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/TVNMathConfigVersion.cmake
  DESTINATION ${_package_dir} COMPONENT development)

set(_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH TVNMATH_PKGCONFIG_TO_PREFIX /prefix/${_pkgconfig_dir} /prefix)
configure_file(cmake/tvnmath.pc.in ${CMAKE_CURRENT_BINARY_DIR}/tvnmath.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tvnmath.pc DESTINATION ${_pkgconfig_dir} COMPONENT development)
