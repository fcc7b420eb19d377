# Profile-guided optimization of the converter. A first build of nbtext, in a
# tree of its own under pgo/, counts how often each branch of the code is
# taken while it converts the training notebooks (samples/ and the fuzz
# seeds) to text, HTML and Markdown; the real build then lays its code out
# by those counts: hot paths straight, cold ones out of the way. GCC only,
# and not where the counts could not be taken (a cross build) or would
# not be used (the sanitizers, Debug).
option(NBTEXT_PGO "Optimize the converter by a profile of its own runs (GCC)" ON)

function(nbtext_profile_guided)
  if(NOT NBTEXT_PGO OR NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU" OR CMAKE_CROSSCOMPILING
     OR NBTEXT_SANITIZE OR CMAKE_BUILD_TYPE STREQUAL "Debug")
    message(STATUS "Profile-guided optimization: off")
    return()
  endif()
  message(STATUS "Profile-guided optimization: on (the training build goes to ${CMAKE_BINARY_DIR}/pgo)")
  set(dir ${CMAKE_BINARY_DIR}/pgo)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/Sources/*)
  file(GLOB training CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/samples/*.nb ${CMAKE_SOURCE_DIR}/samples/training/*.nb
       ${CMAKE_SOURCE_DIR}/fuzz/seeds/notebooks/*.nb)
  # The training run reads the same list.
  file(MAKE_DIRECTORY ${dir})
  file(WRITE ${dir}/notebooks.txt "${training}")
  string(TOUPPER "${CMAKE_BUILD_TYPE}" config)
  # A build run from a custom command gets no share of make's job slots: it
  # takes its own, as many as the machine has cores.
  cmake_host_system_information(RESULT jobs QUERY NUMBER_OF_LOGICAL_CORES)
  # The counts are named after each object's path below its build tree, so
  # that the training tree's objects and this tree's find the same files.
  set(generate -fprofile-generate=${dir}/counts -fprofile-prefix-path=${dir}/train -fprofile-update=atomic)
  list(JOIN generate " " generate)
  add_custom_command(OUTPUT ${dir}/profile.stamp
    COMMAND ${CMAKE_COMMAND} -G ${CMAKE_GENERATOR} -S ${CMAKE_SOURCE_DIR} -B ${dir}/train
            -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE}
            -DCMAKE_C_COMPILER=${CMAKE_C_COMPILER} -DCMAKE_CXX_COMPILER=${CMAKE_CXX_COMPILER}
            "-DCMAKE_CXX_FLAGS=${CMAKE_CXX_FLAGS} ${generate}"
            "-DCMAKE_CXX_FLAGS_${config}=${CMAKE_CXX_FLAGS_${config}}"
            "-DCMAKE_EXE_LINKER_FLAGS=${CMAKE_EXE_LINKER_FLAGS} -fprofile-generate"
            -DNBTEXT_PGO=OFF -DNBTEXT_TESTS=OFF -DNBTEXT_WERROR=OFF -DNBTEXT_LTO=${NBTEXT_LTO}
            -DNBTEXT_CORPUS_DIR=${NBTEXT_CORPUS_DIR} -DNBTEXT_GRAMMAR_PATHS_AS=${CMAKE_BINARY_DIR}
            --log-level=WARNING
    COMMAND ${CMAKE_COMMAND} -E env --unset=MAKEFLAGS ${CMAKE_COMMAND} --build ${dir}/train --target nbtext
            --parallel ${jobs}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${dir}/counts
    COMMAND ${CMAKE_COMMAND} -DNBTEXT=${dir}/train/nbtext -DNOTEBOOKS=${dir}/notebooks.txt
            -P ${CMAKE_SOURCE_DIR}/cmake/ProfileTraining.cmake
    COMMAND ${CMAKE_COMMAND} -E touch ${dir}/profile.stamp
    DEPENDS ${sources} ${training} ${CMAKE_SOURCE_DIR}/cmake/ProfileTraining.cmake
            ${CMAKE_BINARY_DIR}/CMakeCache.txt
    COMMENT "Training the converter's profile"
    VERBATIM)
  add_custom_target(nbtext_profile DEPENDS ${dir}/profile.stamp)
  # Code the training never ran is optimized as without a profile; a
  # profile older than the code (the flags changed by hand) still builds.
  set(use -fprofile-use=${dir}/counts -fprofile-prefix-path=${CMAKE_BINARY_DIR} -fprofile-partial-training
      -Wno-missing-profile -Wno-error=coverage-mismatch)
  foreach(target ${ARGN})
    add_dependencies(${target} nbtext_profile)
    target_compile_options(${target} PRIVATE ${use})
    get_target_property(target_sources ${target} SOURCES)
    set_property(SOURCE ${target_sources} APPEND PROPERTY OBJECT_DEPENDS ${dir}/profile.stamp)
  endforeach()
endfunction()
