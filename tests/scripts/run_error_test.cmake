# Runs `ncl run NAME.zs` in the folder of the script with ZELCLS_PATHS=PATHS;
# requires exit 1, standard error equal to NAME.err (the search folders shown
# as BUILD/) and standard output equal to NAME.out, or empty when there is none.
set(ENV{ZELCLS_PATHS} "${PATHS}")
get_filename_component(dir ${SCRIPT} DIRECTORY)
get_filename_component(name ${SCRIPT} NAME_WE)
execute_process(COMMAND ${NCL} run ${name}.zs WORKING_DIRECTORY ${dir}
  OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
string(REPLACE "${PATHS}/" "BUILD/" err "${err}")
set(want_out "")
if(EXISTS ${dir}/${name}.out)
  file(READ ${dir}/${name}.out want_out)
endif()
file(READ ${dir}/${name}.err want_err)
if(NOT rc EQUAL 1 OR NOT out STREQUAL want_out OR NOT err STREQUAL want_err)
  message(FATAL_ERROR "ncl run ${name}.zs: exit ${rc} (want 1)\n--- stdout:\n${out}\n--- stderr:\n${err}"
                      "--- wanted stderr:\n${want_err}")
endif()
