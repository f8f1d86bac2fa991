# Puts the folders' objects together into the shared library, once for programs and once, unlinked, for inner tests.

find_package(Threads REQUIRED)

set(zucom_parts zucom_sdk zucom_logger zucom_port zucom_api)

# What tests of inner folders and fuzzers link: the same objects, with everything in reach.
add_library(zucom_objects INTERFACE)
target_link_libraries(zucom_objects INTERFACE ${zucom_parts} Threads::Threads)
foreach(part ${zucom_parts})
  target_sources(zucom_objects INTERFACE $<TARGET_OBJECTS:${part}>)
endforeach()

add_library(zucom SHARED)
add_library(zucom::zucom ALIAS zucom)
foreach(part ${zucom_parts})
  target_sources(zucom PRIVATE $<TARGET_OBJECTS:${part}>)
endforeach()
target_link_libraries(zucom PRIVATE Threads::Threads)
target_include_directories(zucom INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set_target_properties(zucom PROPERTIES
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_DEPENDS "${PROJECT_SOURCE_DIR}/api/zucom.map")

# Bsymbolic-functions: the library's own calls stay inside, whatever functions of the same names a program has.
# nodelete: configuration is read once per process, and callbacks and open ports outlive a dlclose().
target_link_options(zucom PRIVATE
  "LINKER:--version-script=${PROJECT_SOURCE_DIR}/api/zucom.map"
  "LINKER:-Bsymbolic-functions,-z,nodelete,-z,relro,-z,now,--as-needed,--no-undefined-version")
if(NOT ZUCOM_SANITIZE)
  target_link_options(zucom PRIVATE "LINKER:-z,defs")
endif()
