# Pages of the public C++ interface, where Doxygen is installed: api_docs/html/index.html in the build folder.
find_program(DOXYGEN doxygen)
find_program(AWK awk)
if(NOT DOXYGEN OR NOT AWK)
  return()
endif()

add_custom_target(api_docs
  COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/api_docs
  COMMAND ${CMAKE_COMMAND} -E env PELMORA_VERSION=${PROJECT_VERSION} PELMORA_API_DOCS=${PROJECT_BINARY_DIR}/api_docs
    ${DOXYGEN} ${PROJECT_SOURCE_DIR}/docs/Doxyfile
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
  VERBATIM)
