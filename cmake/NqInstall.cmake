# Installation: headers, library, CMake package, pkg-config file.

include(CMakePackageConfigHelpers)

install(TARGETS nq EXPORT nqTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT nqTargets
  NAMESPACE nq::
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nq)

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/nqConfig.cmake.in
  ${PROJECT_BINARY_DIR}/nqConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nq)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/nqConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/nqConfig.cmake
  ${PROJECT_BINARY_DIR}/nqConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/nq)

configure_file(${PROJECT_SOURCE_DIR}/cmake/nq.pc.in ${PROJECT_BINARY_DIR}/nq.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/nq.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
