# Configure options; what is for developers is off when another project includes this one.
option(TVNMATH_BUILD_TESTING "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(TVNMATH_BUILD_BENCHMARKS "Build the benchmarks" ${PROJECT_IS_TOP_LEVEL})
option(TVNMATH_BUILD_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(TVNMATH_INSTALL "Install the library and what others need to build with it" ${PROJECT_IS_TOP_LEVEL})
option(TVNMATH_WARNINGS_AS_ERRORS "Treat warnings as errors (for developers of the library)" OFF)

set(TVNMATH_ONEMKL_THREADING "gnu_thread" CACHE STRING "oneMKL threading layer: gnu_thread or sequential")
set_property(CACHE TVNMATH_ONEMKL_THREADING PROPERTY STRINGS gnu_thread sequential)
if(NOT TVNMATH_ONEMKL_THREADING MATCHES "^(gnu_thread|sequential)$")
  message(FATAL_ERROR "TVNMATH_ONEMKL_THREADING is '${TVNMATH_ONEMKL_THREADING}'; choose gnu_thread or sequential.")
endif()

set(TVNMATH_SANITIZE "" CACHE STRING "Empty, or the list for -fsanitize=, for example address,undefined")
