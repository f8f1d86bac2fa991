# What `cmake --install` puts where.

include(CMakePackageConfigHelpers)

set(zucom_templates "${PROJECT_SOURCE_DIR}/cmake/templates")
set(zucom_cmake_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zucom")

# Installed things find each other by relative paths, so that an installed tree can be moved.
function(zucom_relative variable from to)
  file(RELATIVE_PATH relative "${from}" "${to}")
  string(REGEX REPLACE "/$" "" relative "${relative}")
  set(${variable} "${relative}" PARENT_SCOPE)
endfunction()

zucom_relative(zucom_bin_to_lib "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
zucom_relative(zucom_pc_to_lib "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_FULL_LIBDIR}")
zucom_relative(zucom_pc_to_include "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")

# For the programs that are declared after this; a distribution sets CMAKE_SKIP_INSTALL_RPATH.
set(CMAKE_INSTALL_RPATH "$ORIGIN/${zucom_bin_to_lib}")

# The library and its headers.
install(TARGETS zucom EXPORT zucomTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/zucom DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

# find_package(zucom 4): every version with the same major number keeps the binary interface.
install(EXPORT zucomTargets NAMESPACE zucom:: DESTINATION ${zucom_cmake_dir})
configure_package_config_file("${zucom_templates}/zucomConfig.cmake.in" zucomConfig.cmake
  INSTALL_DESTINATION ${zucom_cmake_dir})
write_basic_package_version_file(zucomConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/zucomConfig.cmake" "${PROJECT_BINARY_DIR}/zucomConfigVersion.cmake"
  DESTINATION ${zucom_cmake_dir})

configure_file("${zucom_templates}/zucom.pc.in" zucom.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zucom.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Manual pages: those of the library always, those of the program with the program.
foreach(section 1 3 7)
  file(GLOB pages CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/man/*.${section}")
  if(pages AND (ZUCOM_TOOLS OR NOT section EQUAL 1))
    install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
  endif()
endforeach()

# A logger configuration to copy from; the library itself looks for /etc/ivra/mirn.conf, which belongs to the machine.
install(FILES docs/mirn.conf DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples OPTIONAL)
