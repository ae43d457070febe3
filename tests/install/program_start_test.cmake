# Installs into a staged prefix, starts the program there, moves the prefix and starts it again.
include(${CMAKE_CURRENT_LIST_DIR}/program_starts.cmake)
set(folder ${BUILD}/program_start_test)
file(REMOVE_RECURSE ${folder})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${folder}/staged --component program
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
program_starts_in(${folder}/staged ${LIBDIR} ${VERSION})
file(RENAME ${folder}/staged ${folder}/moved)
program_starts_in(${folder}/moved ${LIBDIR} ${VERSION})
