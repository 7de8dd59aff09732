# Runs PROGRAM, which must succeed, and compares its output with the file EXPECTED, if that exists.

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE output RESULT_VARIABLE result)
message("${output}")
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} ended with ${result}")
endif()
if(EXISTS ${EXPECTED})
  file(READ ${EXPECTED} expected)
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "The output differs from ${EXPECTED}")
  endif()
endif()
