# Writes `ncl doc LIB` to OUT (the reference target), or with CHECK=1 compares
# it with OUT and fails when they differ (the reference test).
execute_process(COMMAND ${NCL} doc ${LIB} OUTPUT_VARIABLE doc RESULT_VARIABLE rc ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "ncl doc failed (${rc}): ${err}")
endif()
if(CHECK)
  if(NOT EXISTS ${OUT})
    message(FATAL_ERROR "${OUT} is missing: run `cmake --build build --target reference`")
  endif()
  file(READ ${OUT} old)
  if(NOT old STREQUAL doc)
    file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/reference.current.md "${doc}")
    message(FATAL_ERROR "${OUT} is out of date: run `cmake --build build --target reference` "
                        "(current output in ${CMAKE_CURRENT_BINARY_DIR}/reference.current.md)")
  endif()
else()
  file(WRITE ${OUT} "${doc}")
endif()
