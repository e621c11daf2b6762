# Installs what a host builds against: the two libraries, the header, a
# pkg-config file and a CMake package giving engine3d::engine3d.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS engine3d engine3d_host LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/engine3d.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The pkg-config file finds the prefix from its own place, so an install
# moved elsewhere (or made with --prefix) still works.
file(RELATIVE_PATH E3D_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${CMAKE_CURRENT_LIST_DIR}/engine3d.pc.in ${CMAKE_CURRENT_BINARY_DIR}/engine3d.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/engine3d.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(E3D_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/engine3d)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/engine3dConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/engine3dConfig.cmake
  INSTALL_DESTINATION ${E3D_CONFIG_DIR}
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/engine3dConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/engine3dConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/engine3dConfigVersion.cmake DESTINATION ${E3D_CONFIG_DIR})
