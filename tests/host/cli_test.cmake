# Runs ncl with ARGS (a ;-list joined with '|', as a ';' would split the test's
# command line), feeding INPUT on standard input when given; checks the exit
# status (STATUS) and that stdout contains OUT and stderr ERR.
set(ENV{ZELCLS_PATHS} "${PATHS}")
string(REPLACE "|" ";" ARGS "${ARGS}")
if(INPUT)
  set(input INPUT_FILE ${INPUT})
endif()
execute_process(COMMAND ${NCL} ${ARGS} ${input} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
if(NOT rc STREQUAL STATUS)
  message(FATAL_ERROR "ncl ${ARGS}: exit ${rc}, expected ${STATUS}\n--- stdout:\n${out}\n--- stderr:\n${err}")
endif()
foreach(stream out err)
  string(TOUPPER ${stream} want)
  string(FIND "${${stream}}" "${${want}}" pos)
  if(pos EQUAL -1)
    message(FATAL_ERROR "ncl ${ARGS}: ${stream} lacks \"${${want}}\"\n--- stdout:\n${out}\n--- stderr:\n${err}")
  endif()
endforeach()
