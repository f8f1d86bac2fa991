# GTest::gtest_main and GTest::gmock for the target machine: Debian's library, or compiled from Debian's sources where the
# tests are cross-built and a library for the other processor is not at hand.

include(GoogleTest)

if(CMAKE_CROSSCOMPILING)
  set(ZUCOM_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "sources of GoogleTest (Debian package googletest)")
  if(NOT EXISTS "${ZUCOM_GOOGLETEST_SOURCE}/CMakeLists.txt")
    message(FATAL_ERROR "No sources of GoogleTest in ${ZUCOM_GOOGLETEST_SOURCE}: install the Debian package googletest.")
  endif()
  set(INSTALL_GTEST OFF)
  add_subdirectory("${ZUCOM_GOOGLETEST_SOURCE}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
  foreach(part gtest gtest_main gmock gmock_main)
    if(NOT TARGET GTest::${part})
      add_library(GTest::${part} ALIAS ${part})
    endif()
  endforeach()
else()
  find_package(GTest REQUIRED)
endif()
