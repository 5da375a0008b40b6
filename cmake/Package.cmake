# Debian packages by cpack, one for each component. Which packages the libraries depend on is read from the libraries
# themselves: the C and C++ run-time libraries, oneTBB and the OpenMP runtime of oneMKL's threading layer.
if(NOT PROJECT_IS_TOP_LEVEL)
  return()
endif()

set(CPACK_PACKAGE_NAME tvnmath)
set(CPACK_PACKAGE_VENDOR "TVNMath contributors")
set(CPACK_PACKAGE_CONTACT "TVNMath contributors" CACHE STRING "Who answers for the packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# The major version is part of the name, so that two of them can be installed side by side.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libtvnmath${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}
 Vectors and matrices, element-wise functions, linear algebra and the real
 Fourier transform: what programs need to run that use the library.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtvnmath-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION} (development files)
 The headers, and how CMake and pkg-config find the library.")
include(CPack)
