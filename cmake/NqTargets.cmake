# The targets that everything else is made of.
#
#   nq_options   how our own code is compiled (warnings, sanitizers, visibility)
#   nq_objects   every source of the library, compiled once
#   nq           the library for users (nq::nq), shared or static, from those objects
#   nq_inside    the same objects with their internal units, for our own tools and tests

include(GNUInstallDirs)

if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
endif()

add_library(nq_options INTERFACE)
target_compile_features(nq_options INTERFACE cxx_std_20)
target_compile_options(nq_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # False alarms about joined strings, until version 13.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  $<$<BOOL:${NQ_WERROR}>:-Werror>)
if(NQ_SANITIZE)
  # Signed overflow wraps by design (-fwrapv), so it is not a finding; a
  # double that does not fit its integer is.
  set(sanitizers -fsanitize=address,undefined,float-cast-overflow
                 -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(nq_options INTERFACE ${sanitizers})
  target_link_options(nq_options INTERFACE ${sanitizers})
endif()
if(NQ_BUILD_FUZZERS)
  target_compile_options(nq_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(NQ_COVERAGE)
  target_compile_options(nq_options INTERFACE --coverage)
  target_link_options(nq_options INTERFACE --coverage)
endif()

# What the library's headers ask of whoever compiles against them: a clone of a
# null pointer is null, so the compiler must not assume that `this` is not.
set(NQ_INTERFACE_OPTIONS
  $<$<CXX_COMPILER_ID:GNU,Clang>:-fno-delete-null-pointer-checks>)

add_library(nq_objects OBJECT)
set_target_properties(nq_objects PROPERTIES
  CXX_EXTENSIONS OFF
  CXX_VISIBILITY_PRESET hidden
  VISIBILITY_INLINES_HIDDEN ON
  POSITION_INDEPENDENT_CODE ON
  UNITY_BUILD OFF)  # sources have names of their own for like things
target_link_libraries(nq_objects PRIVATE nq_options)
target_include_directories(nq_objects PRIVATE ${PROJECT_SOURCE_DIR})
# Calls from one exported function to another stay inside the library, so that
# they can be inlined.
target_compile_options(nq_objects PRIVATE
  -fwrapv -fno-semantic-interposition ${NQ_INTERFACE_OPTIONS})
target_compile_definitions(nq_objects PRIVATE
  $<IF:$<BOOL:${BUILD_SHARED_LIBS}>,NQ_BUILDING_SHARED,NQ_STATIC>)

add_library(nq)
add_library(nq::nq ALIAS nq)
target_sources(nq PRIVATE $<TARGET_OBJECTS:nq_objects>)
target_compile_features(nq PUBLIC cxx_std_20)
target_compile_options(nq INTERFACE ${NQ_INTERFACE_OPTIONS})
target_compile_definitions(nq INTERFACE $<$<NOT:$<BOOL:${BUILD_SHARED_LIBS}>>:NQ_STATIC>)
target_link_libraries(nq PRIVATE $<BUILD_INTERFACE:nq_options> ${CMAKE_DL_LIBS})
set_target_properties(nq PROPERTIES
  LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
  VERIFY_INTERFACE_HEADER_SETS ON)
if(NOT WIN32)
  # Calls inside the library are its own: nobody replaces one function of it. It
  # exports its own names only.
  target_link_options(nq PRIVATE -Wl,-Bsymbolic-functions
    -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
  set_property(TARGET nq APPEND PROPERTY
    LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
endif()

add_library(nq_inside STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:nq_objects>)
target_include_directories(nq_inside PUBLIC ${PROJECT_SOURCE_DIR})
target_compile_features(nq_inside PUBLIC cxx_std_20)
target_compile_options(nq_inside PUBLIC ${NQ_INTERFACE_OPTIONS})
target_compile_definitions(nq_inside PUBLIC NQ_STATIC)
target_link_libraries(nq_inside PUBLIC ${CMAKE_DL_LIBS})
set_target_properties(nq_inside PROPERTIES LINKER_LANGUAGE CXX)

# nq_sources(PUBLIC header... SOURCES source...)
# Adds a folder's files to the library: public headers are installed and
# checked to compile alone; sources may include internal headers.
function(nq_sources)
  cmake_parse_arguments(arg "" "" "PUBLIC;SOURCES" ${ARGN})
  list(TRANSFORM arg_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(nq_objects PRIVATE ${arg_SOURCES})
  if(arg_PUBLIC)
    target_sources(nq PUBLIC FILE_SET HEADERS
      BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_PUBLIC})
  endif()
endfunction()
