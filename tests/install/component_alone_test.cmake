# The component needs the C++ library and nothing else: it builds alone, and passes the tests of its face. Those of the
# layers below have passed on the same sources already.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${result}:\n${output}")
  endif()
endfunction()

run(${CMAKE_COMMAND} -S ${SOURCE} -B ${BUILD} -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${CXX}
  -DCMAKE_BUILD_TYPE=Release -DPELMORA_OPTIMISATION=-O0
  -DPELMORA_WITH_SQLITE=OFF -DPELMORA_WITH_ACCESS=OFF -DPELMORA_WITH_DIALOG=OFF
  -DPELMORA_BUILD_CLI=OFF -DPELMORA_BUILD_TESTS=ON -DPELMORA_COMPONENT_ALONE=ON
  -DCMAKE_UNITY_BUILD=${UNITY} -DCMAKE_UNITY_BUILD_BATCH_SIZE=${BATCH} -DPELMORA_WHOLE_TEST_PROGRAMS=ON)
run(${CMAKE_COMMAND} --build ${BUILD} --target pelmora component_test)
run(${CMAKE_CTEST_COMMAND} --test-dir ${BUILD} --output-on-failure --tests-regex ^component/component_test --no-tests=error)
