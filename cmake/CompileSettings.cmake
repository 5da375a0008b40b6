# How this project's own code is compiled. Nothing here reaches a consumer: no target of ours carries these publicly.
add_library(TVNMathCompileSettings INTERFACE)
target_compile_features(TVNMathCompileSettings INTERFACE cxx_std_20)
# An element's value must not depend on whether a multiply and an add were fused on the path that computed it.
target_compile_options(TVNMathCompileSettings INTERFACE -ffp-contract=off)
target_compile_options(TVNMathCompileSettings INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow>
  $<$<BOOL:${TVNMATH_WARNINGS_AS_ERRORS}>:-Werror>)
# clang counts changes of sign among the conversions. The library has none; tests and benchmarks, full of short lists of
# lengths, may. Nor does a loop over a length that a test names need vectorising, of which clang warns where the library
# asks for it.
target_compile_options(TVNMathCompileSettings INTERFACE
  "$<$<AND:$<CXX_COMPILER_ID:Clang>,$<BOOL:$<TARGET_PROPERTY:TVNMATH_IS_TEST>>>:-Wno-sign-conversion;-Wno-pass-failed>")
if(TVNMATH_SANITIZE)
  target_compile_options(TVNMathCompileSettings INTERFACE
    -fsanitize=${TVNMATH_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(TVNMathCompileSettings INTERFACE -fsanitize=${TVNMATH_SANITIZE})
  # clang warns of loops that it does not vectorise between the sanitizers' checks.
  target_compile_options(TVNMathCompileSettings INTERFACE $<$<CXX_COMPILER_ID:Clang>:-Wno-pass-failed>)
  # Among the sanitizers' checks g++ loses track of which alternative of a union is alive. The optimised build warns.
  target_compile_options(TVNMathCompileSettings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Under the standard library's debug mode the standard vector has another layout. Whoever builds the library so, a parent
# project for all it holds for example, may use it so; the headers refuse any other mixture.
get_property(_definitions DIRECTORY PROPERTY COMPILE_DEFINITIONS)
get_property(_options DIRECTORY PROPERTY COMPILE_OPTIONS)
string(TOUPPER "${CMAKE_BUILD_TYPE}" _build_type)
if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${_build_type}} ${_definitions} ${_options}" MATCHES "_GLIBCXX_DEBUG([ ;=]|$)")
  set(TVNMATH_DEBUG_MODE_DEFINITION TVNMATH_BUILT_WITH_GLIBCXX_DEBUG)
endif()

# A library without a build type would be an unoptimised one. A parent project's build type is its own business.
get_property(_is_multi_config GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT _is_multi_config)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# Lets a shared library export nothing beside the documented boundary, under names that bear its major version, and leave
# nothing undefined that it needs. The sanitizers' run-time library is linked into programs only; a parent project may use
# them by flags of its own.
function(tvnmath_limit_exports target)
  string(TOUPPER ${target} TVNMATH_VERSION_NODE)
  string(APPEND TVNMATH_VERSION_NODE _${PROJECT_VERSION_MAJOR})
  set(_map ${CMAKE_CURRENT_BINARY_DIR}/${target}.exports.map)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/exports.map.in ${_map} @ONLY)
  target_link_options(${target} PRIVATE LINKER:--version-script=${_map})
  if(PROJECT_IS_TOP_LEVEL AND NOT TVNMATH_SANITIZE)
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${_map})
endfunction()
