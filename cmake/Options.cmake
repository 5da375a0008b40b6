# Configure options; what is for developers is off when another project includes this one.
option(TVNMATH_BUILD_TESTING "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(TVNMATH_BUILD_BENCHMARKS "Build the benchmarks" ${PROJECT_IS_TOP_LEVEL})
option(TVNMATH_BUILD_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(TVNMATH_INSTALL "Install the library and what others need to build with it" ${PROJECT_IS_TOP_LEVEL})
option(TVNMATH_WARNINGS_AS_ERRORS "Treat warnings as errors (for developers of the library)" OFF)

# oneMKL's own threads: on LLVM's OpenMP runtime, on GNU's, or none.
set(_threading_layers intel_thread gnu_thread sequential)
set(TVNMATH_ONEMKL_THREADING "intel_thread" CACHE STRING "oneMKL threading layer: intel_thread, gnu_thread or sequential")
set_property(CACHE TVNMATH_ONEMKL_THREADING PROPERTY STRINGS ${_threading_layers})
if(NOT TVNMATH_ONEMKL_THREADING IN_LIST _threading_layers)
  message(FATAL_ERROR
    "TVNMATH_ONEMKL_THREADING is '${TVNMATH_ONEMKL_THREADING}'; choose intel_thread, gnu_thread or sequential.")
endif()

# oneMKL's symbols can be hidden inside a shared library only, and the support library's objects must exist once per
# process. A parent project's wish for its other libraries is no reason to fail.
if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
  set(_shared_only "TVNMath exists as a shared library only, since a static one could not hide oneMKL's symbols")
  if(PROJECT_IS_TOP_LEVEL)
    message(FATAL_ERROR "${_shared_only}. Configure without BUILD_SHARED_LIBS=OFF.")
  endif()
  message(NOTICE "${_shared_only}; BUILD_SHARED_LIBS=OFF does not reach it.")
endif()

option(TVNMATH_RECYCLE_STORAGE "Keep the storage of short-lived containers for the next ones" ON)

set(TVNMATH_SANITIZE "" CACHE STRING "Empty, or the list for -fsanitize=, for example address,undefined")

option(TVNMATH_BUILD_FUZZERS "Build the fuzzers (clang only, with TVNMATH_SANITIZE's fuzzer-no-link)" OFF)
