# How tests are built and run: pelmora_test(store SOURCES a_test.cpp ...) makes one program of a folder.
#
# In the preset for daily work each test is a CTest test of its own, found when CTest runs. The presets that pass
# everything run a program as a whole, in SHARDS processes where it takes long: thousands of processes cost more than
# the tests. A program then lists its tests in test_results/, where scripts/test counts them.
include(GoogleTest)
option(PELMORA_WHOLE_TEST_PROGRAMS "Run each test program as a whole, not each test by itself" OFF)
set(pelmora_test_results ${PROJECT_BINARY_DIR}/test_results)
file(MAKE_DIRECTORY ${pelmora_test_results})

# What some parts of scripts/test build alone: the programs labelled `threads`, for the thread sanitizer, and `memory`,
# which a change breaks most.
add_custom_target(threads_tests)
add_custom_target(memory_tests)

# pelmora_quick_target(NAME): builds what the preset builds up to here, but no program whose tests are all labelled `long`.
function(pelmora_quick_target name)
  set(folders ${PROJECT_SOURCE_DIR})
  set(built "")
  while(folders)
    list(POP_FRONT folders folder)
    get_property(inside DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
    list(APPEND folders ${inside})
    get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target IN LISTS targets)
      get_target_property(type ${target} TYPE)
      get_target_property(is_long ${target} PELMORA_IS_LONG)
      if(type MATCHES "EXECUTABLE|SHARED_LIBRARY|MODULE_LIBRARY" AND NOT is_long)
        list(APPEND built ${target})
      endif()
    endforeach()
  endwhile()
  if(TARGET program_texts)
    list(APPEND built program_texts)
  endif()
  add_custom_target(${name} DEPENDS ${built})
endfunction()

# pelmora_counted(NAME): the CTest test NAME is a GoogleTest program; its results become a file of its name.
function(pelmora_counted name)
  string(REPLACE "/" "." file ${name})
  set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT "GTEST_OUTPUT=xml:${pelmora_test_results}/${file}.xml")
endfunction()

# pelmora_run_tests(store_test store/ SHARDS 2 COST 30 LABELS threads)
#
# COST: seconds that a slow program takes. CTest starts the most expensive first, so that none runs alone at the end. Those
# that wait more than they work, for windows and browsers, have 130 and above: they are started while something is built.
function(pelmora_run_tests program prefix)
  cmake_parse_arguments(arg "" "SHARDS;COST" "LABELS" ${ARGN})
  if(NOT PELMORA_WHOLE_TEST_PROGRAMS)
    gtest_discover_tests(${program} TEST_PREFIX ${prefix} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
      PROPERTIES LABELS "${arg_LABELS}")
    return()
  endif()
  if(NOT arg_SHARDS)
    set(arg_SHARDS 1)
  endif()
  if(NOT arg_COST)
    set(arg_COST 0)
  endif()
  foreach(shard RANGE 1 ${arg_SHARDS})
    set(name ${prefix}${program})
    if(arg_SHARDS GREATER 1)
      string(APPEND name ".${shard}_of_${arg_SHARDS}")
    endif()
    add_test(NAME ${name} COMMAND ${program})
    math(EXPR index "${shard} - 1")
    set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT 1200 COST ${arg_COST}
      ENVIRONMENT "GTEST_TOTAL_SHARDS=${arg_SHARDS};GTEST_SHARD_INDEX=${index}")
    pelmora_counted(${name})
  endforeach()
endfunction()

# pelmora_test_program(store_test a_test.cpp ...): the files named *_test.cpp in batches where the preset builds so
# (CMAKE_UNITY_BUILD), what supports them by itself.
function(pelmora_test_program program)
  set(sources ${ARGN})
  if(CMAKE_UNITY_BUILD)
    if(NOT CMAKE_UNITY_BUILD_BATCH_SIZE)
      set(CMAKE_UNITY_BUILD_BATCH_SIZE 48)
    endif()
    set(left ${ARGN})
    list(FILTER left INCLUDE REGEX "_test\\.cpp$")
    list(FILTER sources EXCLUDE REGEX "_test\\.cpp$")
    # As many in each batch: the largest one may be compiled last, while nothing else is.
    list(LENGTH left count)
    set(most ${CMAKE_UNITY_BUILD_BATCH_SIZE})
    if(left)
      math(EXPR batches "(${count} + ${most} - 1) / ${most}")
      math(EXPR size "(${count} + ${batches} - 1) / ${batches}")
    endif()
    set(number 0)
    while(left)
      list(SUBLIST left 0 ${size} batch)
      list(REMOVE_ITEM left ${batch})
      list(TRANSFORM batch PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
      list(JOIN batch "," joined)
      math(EXPR number "${number} + 1")
      set(file ${CMAKE_CURRENT_BINARY_DIR}/${program}_batch_${number}.cpp)
      set(writer ${PROJECT_SOURCE_DIR}/cmake/write_test_batch.cmake)
      add_custom_command(OUTPUT ${file} DEPENDS ${batch} ${writer}
        COMMAND ${CMAKE_COMMAND} -DBATCH=${file} -DSOURCES=${joined} -P ${writer}
        COMMENT "" VERBATIM)
      list(APPEND sources ${file})
    endwhile()
  endif()
  add_executable(${program} ${sources})
  set_target_properties(${program} PROPERTIES UNITY_BUILD OFF PELMORA_IS_TEST ON)
  if(TARGET pelmora_test_headers)
    target_precompile_headers(${program} REUSE_FROM pelmora_test_headers)
  endif()
endfunction()

# LAYERS: what the program needs of the library, where that is little; only these folders are built for it.
function(pelmora_test folder)
  cmake_parse_arguments(arg "" "SHARDS;COST" "SOURCES;LAYERS;LIBRARIES;LABELS" ${ARGN})
  string(REPLACE "/" "_" name ${folder})
  pelmora_test_program(${name}_test ${arg_SOURCES})
  set(inside pelmora_internal)
  if(arg_LAYERS)
    set(inside ${name}_layers)
    pelmora_archive(${inside} ${arg_LAYERS})
  endif()
  target_link_libraries(${name}_test PRIVATE ${inside} pelmora_test_places GTest::gmock GTest::gtest_main ${arg_LIBRARIES})
  foreach(label threads memory)
    if(label IN_LIST arg_LABELS)
      add_dependencies(${label}_tests ${name}_test)
    endif()
  endforeach()
  if("long" IN_LIST arg_LABELS)
    set_target_properties(${name}_test PROPERTIES PELMORA_IS_LONG ON)
  endif()
  pelmora_run_tests(${name}_test ${folder}/ SHARDS ${arg_SHARDS} COST ${arg_COST} LABELS ${arg_LABELS})
endfunction()

# pelmora_beside(wiring_test pelmora-access): puts a helper program beside the test program, where the library linked into
# the test looks for helpers.
function(pelmora_beside program helper)
  add_dependencies(${program} ${helper})
  add_custom_command(TARGET ${program} POST_BUILD VERBATIM
    COMMAND ${CMAKE_COMMAND} -E create_symlink $<TARGET_FILE:${helper}>
      $<TARGET_FILE_DIR:${program}>/$<TARGET_FILE_NAME:${helper}>)
endfunction()

# pelmora_on_server(calibration WITHOUT suite.test ...): runs the folder's tests a second time, with their curve databases
# on a PostgreSQL server, labelled `again`. WITHOUT: tests of what only a file has. The sanitizers see the engine in
# tests/contract.
# COST: as in pelmora_run_tests.
function(pelmora_on_server folder)
  if(NOT TARGET pelmora-postgresql OR PELMORA_SANITIZE)
    return()
  endif()
  cmake_parse_arguments(arg "" "COST" "WITHOUT" ${ARGN})
  if(NOT arg_COST)
    set(arg_COST 0)
  endif()
  string(REPLACE "/" "_" name ${folder})
  pelmora_beside(${name}_test pelmora-postgresql)
  list(JOIN arg_WITHOUT ":" without)
  set(test ${folder}/${name}_test.on_server)
  add_test(NAME ${test} COMMAND ${name}_test)
  set_tests_properties(${test} PROPERTIES LABELS again TIMEOUT 1200 COST ${arg_COST}
    ENVIRONMENT "PELMORA_TEST_ON_SERVER=1;GTEST_FILTER=-${without}")
  if(PELMORA_WHOLE_TEST_PROGRAMS)
    pelmora_counted(${test})
  endif()
endfunction()
