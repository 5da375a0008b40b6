# How this project's own code is compiled. Nothing here reaches a consumer: no target of ours carries these publicly.
add_library(TVNMathCompileSettings INTERFACE)
target_compile_features(TVNMathCompileSettings INTERFACE cxx_std_20)
# An element's value must not depend on whether a multiply and an add were fused on the path that computed it.
target_compile_options(TVNMathCompileSettings INTERFACE -ffp-contract=off)
target_compile_options(TVNMathCompileSettings INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow>
  $<$<BOOL:${TVNMATH_WARNINGS_AS_ERRORS}>:-Werror>)
if(TVNMATH_SANITIZE)
  target_compile_options(TVNMathCompileSettings INTERFACE
    -fsanitize=${TVNMATH_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(TVNMathCompileSettings INTERFACE -fsanitize=${TVNMATH_SANITIZE})
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
