# The one library that hosts link, pelmora::pelmora, its installation, and the archive for the tests.

get_property(layers GLOBAL PROPERTY pelmora_layers)
get_property(libraries GLOBAL PROPERTY pelmora_libraries)
list(REMOVE_DUPLICATES libraries)
set(layer_objects "")
foreach(layer IN LISTS layers)
  list(APPEND layer_objects $<TARGET_OBJECTS:${layer}>)
endforeach()

# pelmora_archive(some store adapters/sqlite): the objects of these folders, with everything visible to the linker.
function(pelmora_archive name)
  list(TRANSFORM ARGN REPLACE "/" "_")
  list(TRANSFORM ARGN REPLACE "(.+)" "$<TARGET_OBJECTS:pelmora_\\1>" OUTPUT_VARIABLE objects)
  get_property(used GLOBAL PROPERTY pelmora_libraries)
  list(REMOVE_DUPLICATES used)
  add_library(${name} STATIC EXCLUDE_FROM_ALL ${objects})
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${name} PUBLIC pelmora_options ${used} ${CMAKE_DL_LIBS})
endfunction()

# For tests and benchmarks of the inside.
list(TRANSFORM layers REPLACE "^pelmora_" "" OUTPUT_VARIABLE folders)
pelmora_archive(pelmora_internal ${folders})

if(WIN32)
  return()  # the library for hosts is the automation component, bindings/com
endif()

add_library(pelmora SHARED ${layer_objects})
add_library(pelmora::pelmora ALIAS pelmora)
set_target_properties(pelmora PROPERTIES
  LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR})
target_compile_features(pelmora PUBLIC cxx_std_20)
if(NOT APPLE AND NOT PELMORA_SANITIZE)
  # The library's own functions need no look-up at the start of each program.
  target_link_options(pelmora PRIVATE LINKER:-O1 LINKER:-Bsymbolic-functions)
endif()
target_include_directories(pelmora PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(pelmora PRIVATE $<BUILD_INTERFACE:pelmora_options> ${libraries} ${CMAKE_DL_LIBS})

install(TARGETS pelmora EXPORT pelmoraTargets
  RUNTIME COMPONENT program
  LIBRARY COMPONENT program NAMELINK_COMPONENT development
  ARCHIVE COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/pelmora DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT pelmoraTargets NAMESPACE pelmora:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/pelmora
  COMPONENT development)

include(CMakePackageConfigHelpers)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/pelmoraConfig.cmake.in
  ${PROJECT_BINARY_DIR}/pelmoraConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/pelmora)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pelmoraConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/pelmoraConfig.cmake ${PROJECT_BINARY_DIR}/pelmoraConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/pelmora COMPONENT development)
# By its own place, so that a prefix chosen when installing or packaging is the right one.
file(RELATIVE_PATH PELMORA_PREFIX_FROM_PC ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" PELMORA_PREFIX_FROM_PC ${PELMORA_PREFIX_FROM_PC})
configure_file(${PROJECT_SOURCE_DIR}/cmake/pelmora.pc.in ${PROJECT_BINARY_DIR}/pelmora.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pelmora.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
