# Makes the Debian packages and reads them back without installing: which files they hold, what they tell of
# themselves, and whether the program runs from what they hold.
set(folder ${BUILD}/package_test)
file(REMOVE_RECURSE ${folder})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE error)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${result}:\n${output}${error}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

run(${CPACK} --config ${BUILD}/CPackConfig.cmake -B ${folder})

# open_package(NAME): its list of files in `files`, itself unpacked in ${folder}/root.
macro(open_package name)
  file(GLOB package ${folder}/${name}_${VERSION}_*.deb)
  list(LENGTH package count)
  if(NOT count EQUAL 1)
    message(FATAL_ERROR "${count} packages ${name} of version ${VERSION}")
  endif()
  run(${DPKG_DEB} --contents ${package})
  set(files "${output}")
  run(${DPKG_DEB} --extract ${package} ${folder}/root)
endmacro()

function(expect_files)
  foreach(file IN LISTS ARGN)
    string(FIND "${files}" " ./usr/${file}" at)
    if(at EQUAL -1)
      message(FATAL_ERROR "${package} lacks /usr/${file}:\n${files}")
    endif()
  endforeach()
endfunction()

function(expect_field field pattern)
  run(${DPKG_DEB} --field ${package} ${field})
  if(NOT output MATCHES "${pattern}")
    message(FATAL_ERROR "${package} says ${field}: ${output}instead of ${pattern}")
  endif()
endfunction()

open_package(pelmora)
expect_files(bin/pelmora ${LIBDIR}/libpelmora.so.0 share/man/man1/pelmora.1 share/man/man1/pelmora-fit.1
  share/man/man1/pelmora-import-curve.1 share/man/man1/pelmora-import-access.1
  share/bash-completion/completions/pelmora ${ZSH_FOLDER}/_pelmora
  share/fish/vendor_completions.d/pelmora.fish share/doc/pelmora/copyright share/doc/pelmora/CHANGELOG.md
  share/doc/pelmora/THIRD_PARTY.md share/pelmora/pelmora.schema.json)
if(DIALOG)
  expect_files(libexec/pelmora/pelmora-dialog)
endif()
if(ACCESS)
  expect_files(libexec/pelmora/pelmora-access)
  expect_field(Depends "libmdb3")
endif()
if(POSTGRESQL)
  expect_files(${LIBDIR}/pelmora/libpelmora-postgresql.so)
  expect_field(Depends "libpqxx-6.4")
endif()
if(files MATCHES "usr/include|\\.cmake|libpelmora\\.so( |\n)")
  message(FATAL_ERROR "${package} holds development files:\n${files}")
endif()
expect_field(Version "^${VERSION}\n$")
expect_field(Section "^science\n$")
foreach(library libc6 libstdc\\+\\+6 libsqlite3-0 libxlsxwriter libmicrohttpd)
  expect_field(Depends "${library}")
endforeach()

# A page for every command that the program tells of in its own page.
file(READ ${folder}/root/usr/share/man/man1/pelmora.1 page)
string(REPLACE "\\-" "-" page "${page}")
string(REGEX MATCHALL "pelmora-[a-z-]+\\\\fR\\(1\\)" references "${page}")
list(LENGTH references commands)
file(GLOB pages ${folder}/root/usr/share/man/man1/pelmora-*.1)
list(LENGTH pages written)
if(commands LESS 10 OR NOT commands EQUAL written)
  message(FATAL_ERROR "${written} man pages for ${commands} commands")
endif()

include(${CMAKE_CURRENT_LIST_DIR}/program_starts.cmake)
program_starts_in(${folder}/root/usr ${LIBDIR} ${VERSION})

open_package(libpelmora-dev)
expect_files(include/pelmora/pelmora.h include/pelmora/raw_data.h ${LIBDIR}/libpelmora.so
  ${LIBDIR}/cmake/pelmora/pelmoraConfig.cmake ${LIBDIR}/pkgconfig/pelmora.pc share/doc/libpelmora-dev/copyright)
expect_field(Depends "pelmora \\(= ${VERSION}\\)")
expect_field(Section "^libdevel\n$")

# The pkg-config file finds the headers from its own place.
find_program(PKG_CONFIG pkg-config)
if(PKG_CONFIG)
  set(ENV{PKG_CONFIG_PATH} ${folder}/root/usr/${LIBDIR}/pkgconfig)
  run(${PKG_CONFIG} --modversion pelmora)
  if(NOT output STREQUAL "${VERSION}\n")
    message(FATAL_ERROR "pkg-config says version ${output}")
  endif()
  run(${PKG_CONFIG} --variable=includedir pelmora)
  string(STRIP "${output}" headers)
  if(NOT EXISTS ${headers}/pelmora/pelmora.h)
    message(FATAL_ERROR "pkg-config names ${headers}, where the headers are not")
  endif()
endif()

# The module finds the library where the package `pelmora` has put it.
if(PYTHON)
  open_package(python3-pelmora)
  expect_files(lib/python3/dist-packages/pelmora/__init__.py lib/python3/dist-packages/pelmora/py.typed
    share/doc/python3-pelmora/copyright)
  expect_field(Depends "pelmora \\(= ${VERSION}\\)")
  expect_field(Depends "python3-numpy")
  expect_field(Section "^python\n$")
  run(${CMAKE_COMMAND} -E env PYTHONPATH=${folder}/root/usr/lib/python3/dist-packages
    ${PYTHON} -c "import pelmora, sys\nsys.stdout.write(pelmora.__version__ + pelmora.__file__)")
  if(NOT output STREQUAL "${VERSION}${folder}/root/usr/lib/python3/dist-packages/pelmora/__init__.py")
    message(FATAL_ERROR "the unpacked package says ${output}")
  endif()
endif()
