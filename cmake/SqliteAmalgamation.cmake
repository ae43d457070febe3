# SQLite built from its amalgamation, for systems without a package of it: the target SQLite::SQLite3.
#
# The source comes inside the npm package better-sqlite3, fetched once per build folder; the checksum pins it.

enable_language(C)
set(package_version 11.10.0)
set(package_checksum 13084ea725e23842ff94acc7cfd016d66b1614dcc673fcfe2f3781dff8e7149a71bbeb61db2aafcec4966acd6ff6382cf7ec625c9703e40f02271006d936a085)
set(sqlite_folder ${CMAKE_BINARY_DIR}/sqlite)
set(package_file ${sqlite_folder}/better-sqlite3-${package_version}.tgz)

if(NOT EXISTS ${package_file})
  find_program(NPM npm REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  file(MAKE_DIRECTORY ${sqlite_folder})
  execute_process(COMMAND ${NPM} pack --silent better-sqlite3@${package_version}
    WORKING_DIRECTORY ${sqlite_folder} RESULT_VARIABLE fetched OUTPUT_QUIET)
  if(NOT fetched EQUAL 0)
    message(FATAL_ERROR "SQLite's source cannot be fetched: npm pack better-sqlite3@${package_version} failed")
  endif()
endif()
file(SHA512 ${package_file} checksum)
if(NOT checksum STREQUAL package_checksum)
  file(REMOVE ${package_file})
  message(FATAL_ERROR "better-sqlite3 ${package_version} is not the package that this build was tested with")
endif()
set(sqlite_source ${sqlite_folder}/package/deps/sqlite3)
if(NOT EXISTS ${sqlite_source}/sqlite3.c)
  file(ARCHIVE_EXTRACT INPUT ${package_file} DESTINATION ${sqlite_folder} PATTERNS package/deps/sqlite3/*)
endif()

add_library(sqlite_amalgamation STATIC EXCLUDE_FROM_ALL ${sqlite_source}/sqlite3.c)
add_library(SQLite::SQLite3 ALIAS sqlite_amalgamation)
target_include_directories(sqlite_amalgamation SYSTEM INTERFACE ${sqlite_source})
target_compile_options(sqlite_amalgamation PRIVATE ${plain_optimisation} -w)
