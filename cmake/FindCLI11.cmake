# CLI11, which is headers only: CLI11::CLI11 for find_package(CLI11).
#
# A cross build finds those of this system, too, and reaches them alone: what stands
# beside them is not for the other system.

find_path(CLI11_INCLUDE_DIR CLI/CLI.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(CLI11 REQUIRED_VARS CLI11_INCLUDE_DIR)
mark_as_advanced(CLI11_INCLUDE_DIR)

if(CLI11_FOUND AND NOT TARGET CLI11::CLI11)
  set(CLI11_HEADERS ${CMAKE_BINARY_DIR}/headers/cli11)
  file(COPY ${CLI11_INCLUDE_DIR}/CLI DESTINATION ${CLI11_HEADERS})
  add_library(CLI11::CLI11 INTERFACE IMPORTED GLOBAL)
  set_target_properties(CLI11::CLI11 PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES ${CLI11_HEADERS})
endif()
