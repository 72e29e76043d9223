# Installation: headers, library, CMake package, pkg-config file, what debuggers
# need to show the library's values, and the documents.

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

# The prefix is found from where the file lies, so that the installed tree can be
# moved; not so from a folder for libraries that was given from the root on.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  set(NQ_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH NQ_PC_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(REGEX REPLACE "/$" "" NQ_PC_PREFIX "\${pcfiledir}/${NQ_PC_PREFIX}")
endif()
foreach(folder LIBDIR INCLUDEDIR)
  set(NQ_PC_${folder} "\${prefix}")
  cmake_path(APPEND NQ_PC_${folder} "${CMAKE_INSTALL_${folder}}")  # or replaces it
endforeach()
set(NQ_PC_LIBS_PRIVATE)
foreach(library IN LISTS CMAKE_DL_LIBS)
  string(APPEND NQ_PC_LIBS_PRIVATE "-l${library}")
endforeach()
set(NQ_PC_FLAGS -fno-delete-null-pointer-checks)
if(NOT BUILD_SHARED_LIBS)
  string(APPEND NQ_PC_FLAGS " -DNQ_STATIC")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/nq.pc.in ${PROJECT_BINARY_DIR}/nq.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/nq.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(FILES ${PROJECT_SOURCE_DIR}/debug/nq_gdb.py ${PROJECT_SOURCE_DIR}/debug/nq.natvis
  DESTINATION ${CMAKE_INSTALL_DATADIR}/nq)
# gdb loads the printers of a library by itself from one folder of its own,
# where they lie under the library's full name.
if(UNIX AND BUILD_SHARED_LIBS)
  install(CODE "
    if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
      file(INSTALL \"${PROJECT_SOURCE_DIR}/debug/nq_gdb.py\"
        DESTINATION \"/usr/share/gdb/auto-load/usr/${CMAKE_INSTALL_LIBDIR}\"
        RENAME \"libnq.so.${PROJECT_VERSION}-gdb.py\")
    endif()")
endif()

# The documents refer to one another as they lie in the source tree. The examples are
# there to be read, and the layout to be built as well. As part of another project nq
# leaves that project's folder for documents alone.
if(PROJECT_IS_TOP_LEVEL)
  install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    REGEX "/examples/CMakeLists.txt$|/run_example.cmake$|/Doxyfile$|/api.dox$" EXCLUDE)
endif()
