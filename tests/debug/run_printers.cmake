# Runs gdb over PROGRAM and compares what it prints with values.expected.

execute_process(
  COMMAND ${GDB} -nx -batch -x ${PRINTERS} -x ${CMAKE_CURRENT_LIST_DIR}/printers.gdb ${PROGRAM}
  OUTPUT_VARIABLE output ERROR_VARIABLE trouble)
string(REGEX MATCHALL "\n\\$[0-9]+ = [^\n]*" values "${output}")
string(REGEX REPLACE "\n\\$[0-9]+ = " "\n" values "${values}")
file(READ ${CMAKE_CURRENT_LIST_DIR}/values.expected expected)
# Lists of CMake put a ";" between matches.
string(REPLACE ";" "" values "${values}")
string(STRIP "${values}" values)
string(STRIP "${expected}" expected)
if(NOT values STREQUAL expected)
  message(FATAL_ERROR "expected\n${expected}\nbut gdb printed\n${values}\n\n${output}\n${trouble}")
endif()
