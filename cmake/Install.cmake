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

# How debuggers show the library's objects. gdb looks for a file of this name beside the library itself.
install(FILES debugging/gdb_printers.py DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  RENAME $<TARGET_FILE_NAME:TVNMath>-gdb.py)
install(FILES debugging/tvnmath.natvis debugging/valgrind.supp debugging/thread-sanitizer.supp
  DESTINATION ${CMAKE_INSTALL_DATADIR}/tvnmath COMPONENT development)

# The licence, and the notices of what is compiled or linked into the libraries: oneMKL's archives, and templates of
# oneTBB's and Highway's headers. They come from where the dependency came from.
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tvnmath COMPONENT runtime)
function(tvnmath_install_notice name variable)
  if(${variable})
    install(FILES "${${variable}}" DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tvnmath/notices RENAME ${name}.txt
      COMPONENT runtime)
  else()
    message(WARNING "${name}'s licence was not found; what is installed may not be passed on without it. "
                    "Name the file by ${variable}.")
  endif()
endfunction()
set(_licensing_folders licensing licensing/en documentation/licensing share/doc/mkl/licensing ../licensing ../../licensing)
if(DEFINED ENV{MKLROOT})
  find_file(TVNMATH_ONEMKL_LICENSE NAMES license.txt LICENSE license.md NO_DEFAULT_PATH
    HINTS "$ENV{MKLROOT}" PATH_SUFFIXES ${_licensing_folders} DOC "oneMKL's licence")
  find_file(TVNMATH_ONEMKL_THIRD_PARTY NAMES third-party-programs.txt mkl-third-party-programs.txt NO_DEFAULT_PATH
    HINTS "$ENV{MKLROOT}" PATH_SUFFIXES ${_licensing_folders} DOC "The notices of what is in oneMKL")
  tvnmath_install_notice(oneMKL-third-party-programs TVNMATH_ONEMKL_THIRD_PARTY)
else()
  find_file(TVNMATH_ONEMKL_LICENSE NAMES copyright NO_DEFAULT_PATH PATHS /usr/share/doc/libmkl-dev
    DOC "oneMKL's licence")
endif()
tvnmath_install_notice(oneMKL TVNMATH_ONEMKL_LICENSE)
find_file(TVNMATH_ONETBB_LICENSE NAMES copyright NO_DEFAULT_PATH PATHS /usr/share/doc/libtbb-dev DOC "oneTBB's licence")
tvnmath_install_notice(oneTBB TVNMATH_ONETBB_LICENSE)
find_file(TVNMATH_HIGHWAY_LICENSE NAMES copyright NO_DEFAULT_PATH PATHS /usr/share/doc/libhwy-dev DOC "Highway's licence")
tvnmath_install_notice(Highway TVNMATH_HIGHWAY_LICENSE)

include(cmake/Package.cmake)
