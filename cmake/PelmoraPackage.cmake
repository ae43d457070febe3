# Debian packages, made by cpack: `pelmora` (program, library, message window, reader of Access files), `libpelmora-dev`
# (what a host is built with) and, where it is built, `python3-pelmora`. `cmake --workflow --preset package` makes them.
set(documentation ${CMAKE_INSTALL_DATADIR}/doc)
install(FILES LICENSE RENAME copyright DESTINATION ${documentation}/pelmora COMPONENT program)
install(FILES LICENSE RENAME copyright DESTINATION ${documentation}/libpelmora-dev COMPONENT development)
set(CPACK_COMPONENTS_ALL program development)
if(TARGET pelmora_python)
  install(FILES LICENSE RENAME copyright DESTINATION ${documentation}/python3-pelmora COMPONENT python EXCLUDE_FROM_ALL)
  install(FILES THIRD_PARTY.md DESTINATION ${documentation}/python3-pelmora COMPONENT python EXCLUDE_FROM_ALL)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
install(FILES CHANGELOG.md THIRD_PARTY.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/pelmora COMPONENT program)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME pelmora)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Pelmora maintainers")
set(CPACK_PACKAGE_CONTACT "The Pelmora maintainers <maintainers@pelmora.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "calibration curves of turbine flow meters")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME pelmora)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
"Keeps, derives, fits and reports the calibration curves of turbine flow
meters: the command line pelmora, the library that it uses, the window
that shows a host application's messages, a reader of Access files, and
the module for curve databases on a PostgreSQL server.")
# The libraries' packages come from dpkg-shlibdeps, which finds our own in the build folder.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
if(PELMORA_BUILD_CLI AND PELMORA_WITH_SQLITE)  # loaded when a workbook is written, a certificate is read, the workbench starts
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "libxlsxwriter4, libxml2, libmicrohttpd12")
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "weasyprint, xmlsec1")
endif()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/src/report)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)  # for packages of hosts

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpelmora-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "pelmora (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"Development files: headers, CMake package and pkg-config file for
applications that keep and fit curves through the Pelmora library.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-pelmora)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "pelmora (= ${PROJECT_VERSION}), python3 (>= 3.9), python3-numpy")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-pandas, python3-matplotlib, python3-tqdm")
set(CPACK_DEBIAN_PYTHON_DESCRIPTION
"Calibration curves of turbine flow meters in Python: keep, derive, fit and
report them with arrays and pandas frames in and out.")

include(CPack)
