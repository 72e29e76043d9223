# Packages of a built tree: `cpack --config build/release/CPackConfig.cmake` writes
# a .deb, which installs to /usr, and a .tar.gz, which may be unpacked anywhere.

set(CPACK_PACKAGE_CONTACT "The nq developers <nq@localhost>")
set(CPACK_GENERATOR TGZ)
find_program(NQ_DPKG_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(NQ_DPKG_SHLIBDEPS)
if(NQ_DPKG_SHLIBDEPS)
  list(APPEND CPACK_GENERATOR DEB)
endif()
set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)

# "nq" alone is another program in Debian.
set(CPACK_DEBIAN_PACKAGE_NAME libnq-dev)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_PACKAGE_DESCRIPTION
"The shared library, its headers, the command-line tool nqoml, what debuggers
need to show the library's values, and the documents.")
# What the library asks of the system, and how others ask for this library.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/nq)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/NqPackageOf.cmake)
include(CPack)
