# The page of the workbench as one source: its files are compiled into the program as they are.
#
# Result: PELMORA_WORKBENCH_PAGE
set(workbench_page ${CMAKE_CURRENT_SOURCE_DIR}/workbench/page)
file(GLOB workbench_files CONFIGURE_DEPENDS RELATIVE ${workbench_page} ${workbench_page}/*.html ${workbench_page}/*.css
  ${workbench_page}/*.js ${workbench_page}/*.svg)
list(APPEND workbench_files ../api/openapi.json)
set(PELMORA_WORKBENCH_PAGE ${CMAKE_CURRENT_BINARY_DIR}/workbench_page_files.cpp)
set(paths ${workbench_files})
list(TRANSFORM paths PREPEND ${workbench_page}/)
list(JOIN workbench_files "," joined)
add_custom_command(OUTPUT ${PELMORA_WORKBENCH_PAGE}
  COMMAND ${CMAKE_COMMAND} -DOUTPUT=${PELMORA_WORKBENCH_PAGE} -DFOLDER=${workbench_page} -DFILES=${joined}
    -P ${workbench_page}/embed.cmake
  DEPENDS ${paths} ${workbench_page}/embed.cmake
  COMMENT "" VERBATIM)
# Its texts share no names with other sources, but their literals are long.
set_source_files_properties(${PELMORA_WORKBENCH_PAGE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
