# oneMKL's static libraries behind its 64-bit-integer interface, as the imported target OneMKL::Static.
# An installation named by MKLROOT wins over the one that the system's package manager installed.
set(_mkl_root "$ENV{MKLROOT}")
if(_mkl_root)
  set(_mkl_search NO_DEFAULT_PATH HINTS "${_mkl_root}" PATH_SUFFIXES lib/intel64 lib lib/x86_64-linux-gnu)
  set(_mkl_header_search NO_DEFAULT_PATH HINTS "${_mkl_root}" PATH_SUFFIXES include include/mkl)
else()
  set(_mkl_search "")
  set(_mkl_header_search PATH_SUFFIXES mkl)
endif()

find_path(TVNMATH_ONEMKL_INCLUDE_DIR mkl.h ${_mkl_header_search})
find_library(TVNMATH_ONEMKL_INTERFACE libmkl_intel_ilp64.a ${_mkl_search})
# By name, so that a build folder configured for another layer looks for that one.
find_library(TVNMATH_ONEMKL_${TVNMATH_ONEMKL_THREADING} libmkl_${TVNMATH_ONEMKL_THREADING}.a ${_mkl_search})
find_library(TVNMATH_ONEMKL_CORE libmkl_core.a ${_mkl_search})
if(NOT (TVNMATH_ONEMKL_INCLUDE_DIR AND TVNMATH_ONEMKL_INTERFACE AND TVNMATH_ONEMKL_${TVNMATH_ONEMKL_THREADING} AND TVNMATH_ONEMKL_CORE))
  message(FATAL_ERROR
    "oneMKL's static 64-bit-integer libraries were not found (threading layer ${TVNMATH_ONEMKL_THREADING}). "
    "Run scripts/setup, which installs them, or set the environment variable MKLROOT to an installation.")
endif()

# The OpenMP runtime that the threading layer calls. Intel's and LLVM's are interchangeable, and either goes by this name.
set(_openmp "")
if(TVNMATH_ONEMKL_THREADING STREQUAL "intel_thread")
  find_library(TVNMATH_LLVM_OPENMP iomp5)
  if(NOT TVNMATH_LLVM_OPENMP)
    message(FATAL_ERROR
      "LLVM's OpenMP runtime (libiomp5.so) was not found. Run scripts/setup, which installs it, name the library by "
      "TVNMATH_LLVM_OPENMP, or choose another TVNMATH_ONEMKL_THREADING.")
  endif()
  set(_openmp "${TVNMATH_LLVM_OPENMP}")
elseif(TVNMATH_ONEMKL_THREADING STREQUAL "gnu_thread")
  set(_openmp gomp)
endif()

find_package(Threads REQUIRED)
add_library(OneMKL::Static INTERFACE IMPORTED)
target_include_directories(OneMKL::Static SYSTEM INTERFACE "${TVNMATH_ONEMKL_INCLUDE_DIR}")
string(TOUPPER TVNMATH_ONEMKL_${TVNMATH_ONEMKL_THREADING} _layer)
target_compile_definitions(OneMKL::Static INTERFACE MKL_ILP64 ${_layer})
# The three archives refer to each other in a circle, hence the group.
target_link_libraries(OneMKL::Static INTERFACE
  -Wl,--start-group "${TVNMATH_ONEMKL_INTERFACE}" "${TVNMATH_ONEMKL_${TVNMATH_ONEMKL_THREADING}}" "${TVNMATH_ONEMKL_CORE}" -Wl,--end-group
  ${_openmp} Threads::Threads m ${CMAKE_DL_LIBS})
