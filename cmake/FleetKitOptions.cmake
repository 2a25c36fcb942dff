# Language level, warnings and sanitizers, one place for all targets. What only our own builds want
# (warnings as errors, tests) is set by CMakePresets.json.
set(FLEETKIT_SANITIZE "" CACHE STRING "Sanitizers to build with, as in -fsanitize=")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

add_library(fleetkit-options INTERFACE)
target_compile_options(fleetkit-options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(fleetkit-options INTERFACE -Wthread-safety)
endif()
if(FLEETKIT_SANITIZE)
  target_compile_options(fleetkit-options INTERFACE
    -fsanitize=${FLEETKIT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(fleetkit-options INTERFACE -fsanitize=${FLEETKIT_SANITIZE})
  # What sanitizers insert makes GCC see uninitialised values inside the standard library.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(fleetkit-options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
