# One run of PROGRAM with ARGUMENTS: exit code EXIT, output NAME.expected.
# Standard error, if any, stands after the output.
set(input)
if(EXISTS ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.oml)
  set(input INPUT_FILE ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.oml)
endif()
execute_process(COMMAND ${PROGRAM} ${ARGUMENTS} ${input}
  OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE result)
string(REPLACE "\r\n" "\n" err "${err}")
set(actual "${out}${err}")
set(expected)
if(EXISTS ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.expected)
  file(READ ${CMAKE_CURRENT_BINARY_DIR}/${NAME}.expected expected)
endif()
if(NOT result EQUAL EXIT OR NOT actual STREQUAL expected)
  message("--- expected, with exit code ${EXIT}\n${expected}")
  message("--- got, with exit code ${result}\n${actual}")
  message(FATAL_ERROR "${NAME}: not what was expected")
endif()
