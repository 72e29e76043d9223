# Checks what SCRIPT writes to its standard output, read from standard input.
execute_process(
  COMMAND ${SCRIPT}
  COMMAND ${PROGRAM} check --grammar ${GRAMMAR} -
  RESULTS_VARIABLE results OUTPUT_VARIABLE out)
if(NOT results STREQUAL "0;0")
  message(FATAL_ERROR "${results}\n${out}")
endif()
