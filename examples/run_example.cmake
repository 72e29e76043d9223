# Runs PROGRAM, which must succeed and write what the file EXPECTED holds: to its
# output or, where WRITTEN names a file, to that.

if(WRITTEN)
  file(REMOVE ${WRITTEN})
endif()

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE written ERROR_VARIABLE trouble
  RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "exit code ${result}\n${written}${trouble}")
endif()
if(WRITTEN)
  file(READ ${WRITTEN} written)
endif()
file(READ ${EXPECTED} expected)
string(REPLACE "\r\n" "\n" written "${written}")
if(NOT written STREQUAL expected)
  message(FATAL_ERROR "expected\n${expected}\nbut it wrote\n${written}")
endif()
