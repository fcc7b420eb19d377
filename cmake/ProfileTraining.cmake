# Runs the instrumented converter (NBTEXT) over the training notebooks of
# the checkout at SOURCE_DIR in the three output forms, its output
# discarded. A notebook that is refused counts as well: refusing is a path
# too. The list is the one ProfileGuided.cmake makes the profile depend on.
file(GLOB notebooks ${SOURCE_DIR}/samples/*.nb ${SOURCE_DIR}/samples/training/*.nb
     ${SOURCE_DIR}/fuzz/seeds/notebooks/*.nb)
foreach(notebook ${notebooks})
  foreach(mode "" -html -markdown)
    execute_process(COMMAND ${NBTEXT} ${mode} ${notebook} OUTPUT_FILE /dev/null ERROR_FILE /dev/null
                    RESULT_VARIABLE status)
    if(NOT status MATCHES "^(0|1|255)$")
      message(FATAL_ERROR "the training run of ${NBTEXT} ${mode} ${notebook} ended with ${status}")
    endif()
  endforeach()
endforeach()
