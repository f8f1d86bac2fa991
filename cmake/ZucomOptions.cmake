# What is built, and how every target of the project is compiled.

include(GNUInstallDirs)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Kind of build" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# The parts beside the library. Off unless asked for, so that a plain build needs nothing but a compiler; a part that is
# asked for fails loudly when a package it needs is missing. The presets and ./dev ask for what they need.
option(ZUCOM_TOOLS "the zucom program (needs CLI11, nlohmann-json, fmt)" OFF)
option(ZUCOM_EXAMPLES "the example programs" OFF)
option(ZUCOM_TESTS "the test suite (needs GoogleTest)" OFF)
option(ZUCOM_FUZZ "the fuzz targets (with Clang also as libFuzzer programs)" OFF)
option(ZUCOM_BENCHMARKS "the benchmarks (need Google Benchmark and the libraries compared)" OFF)
option(ZUCOM_DOCS "reference documentation (needs Doxygen)" OFF)
option(ZUCOM_WERROR "treat warnings as errors" OFF)
set(ZUCOM_SANITIZE "" CACHE STRING "sanitizers for everything, for example address,undefined")

function(zucom_add_part name folder)
  if(ZUCOM_${name})
    add_subdirectory(${folder})
  endif()
endfunction()

add_library(zucom_flags INTERFACE)
target_compile_options(zucom_flags INTERFACE -Wall -Wextra -Wconversion -Wshadow)
if(ZUCOM_WERROR)
  target_compile_options(zucom_flags INTERFACE -Werror)
endif()
if(ZUCOM_SANITIZE)
  add_compile_options(-fsanitize=${ZUCOM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ZUCOM_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized) # false where the code is instrumented; the sanitizers see the real ones
  endif()
endif()
