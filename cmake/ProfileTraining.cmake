# Runs the instrumented converter (NBTEXT) over the training notebooks
# listed in the file NOTEBOOKS (written by ProfileGuided.cmake) in the three
# output forms, its output discarded. A notebook that is refused counts as
# well: refusing is a path too.
file(READ ${NOTEBOOKS} notebooks)
foreach(notebook ${notebooks})
  foreach(mode "" -html -markdown)
    execute_process(COMMAND ${NBTEXT} ${mode} ${notebook} OUTPUT_FILE /dev/null ERROR_FILE /dev/null
                    RESULT_VARIABLE status)
    if(NOT status MATCHES "^(0|1|255)$")
      message(FATAL_ERROR "the training run of ${NBTEXT} ${mode} ${notebook} ended with ${status}")
    endif()
  endforeach()
endforeach()
