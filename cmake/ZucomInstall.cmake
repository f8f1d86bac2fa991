# What `cmake --install` puts where.

install(TARGETS zucom LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/zucom DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
