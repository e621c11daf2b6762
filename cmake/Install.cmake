# Installs what a host builds against: the two libraries, the header, a
# pkg-config file and a CMake package giving engine3d::engine3d.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS engine3d engine3d_host
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(WIN32)
  # From the module-definition file Microsoft's tools make an import library:
  #   lib /def:engine3d.def /machine:x86 /out:engine3d.lib
  install(FILES ${PROJECT_BINARY_DIR}/engine3d.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
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
  PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/engine3dConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/engine3dConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/engine3dConfigVersion.cmake DESTINATION ${E3D_CONFIG_DIR})

# Packages: a zip of the install tree for each Windows build; a tarball and a
# Debian package for Linux.
set(CPACK_PACKAGE_NAME engine3d)
set(CPACK_PACKAGE_VENDOR engine3d)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "CPU-only 3D rendering library for 16-bit 5:5:5 pixel buffers")
set(CPACK_PACKAGE_CONTACT "engine3d developers <engine3d@localhost>")
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(CPACK_SYSTEM_NAME win32)
  else()
    set(CPACK_SYSTEM_NAME win64)
  endif()
else()
  set(CPACK_GENERATOR "TGZ;DEB")
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS OFF)
endif()
include(CPack)
