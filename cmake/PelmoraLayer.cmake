# One target per folder: pelmora_layer(store USES base SOURCES location.cpp LIBRARIES ...)
#
# Each layer is an object library; all of them together make the library `pelmora` and, for the tests
# that look inside, the static archive `pelmora_internal`.

add_library(pelmora_options INTERFACE)
target_compile_features(pelmora_options INTERFACE cxx_std_20)
target_include_directories(pelmora_options INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src
  ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/generated)
if(MSVC)
  target_compile_options(pelmora_options INTERFACE /W4 $<$<BOOL:${PELMORA_WARNINGS_AS_ERRORS}>:/WX>)
else()
  target_compile_options(pelmora_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
    # GCC 12 sees an overlap in the replacement of std::string texts that is none (its bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    $<$<BOOL:${PELMORA_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
if(PELMORA_SANITIZE)
  target_compile_options(pelmora_options INTERFACE
    -fsanitize=${PELMORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
    # What the address sanitizer sees as well; a quarter of the time that a test takes to compile.
    $<$<BOOL:$<TARGET_PROPERTY:PELMORA_IS_TEST>>:-fno-sanitize=null,alignment,vptr,object-size>)
  # Both check every access, which takes a quarter of the time to compile as well. The address sanitizer stops at the use of
  # a null pointer anyway, and only memory that is cast to another type can be misaligned. scripts/fuzz has them everywhere.
  if(NOT PELMORA_SANITIZE MATCHES "fuzzer")
    target_compile_options(pelmora_options INTERFACE
      $<$<NOT:$<BOOL:$<TARGET_PROPERTY:PELMORA_CASTS_MEMORY>>>:-fno-sanitize=null,alignment>
      # Clang takes a third longer to optimise loops with these in them; the address sanitizer sees every access.
      $<$<BOOL:$<TARGET_PROPERTY:PELMORA_IS_NUMERICAL>>:-fno-sanitize=pointer-overflow,object-size>)
  endif()
  target_link_options(pelmora_options INTERFACE -fsanitize=${PELMORA_SANITIZE})
  target_compile_definitions(pelmora_options INTERFACE PELMORA_SANITIZED)
  # What the sanitizers add to each program takes binutils' linker four times as long.
  find_program(PELMORA_LLD ld.lld-14)
  if(PELMORA_LLD AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_link_options(pelmora_options INTERFACE --ld-path=${PELMORA_LLD})
  endif()
endif()
# The code of which the fuzz targets see what they have reached. Comparisons are not watched, which would slow down
# everything else.
add_library(pelmora_watched INTERFACE)
if(PELMORA_BUILD_FUZZERS AND NOT PELMORA_SANITIZE MATCHES "fuzzer")
  target_compile_options(pelmora_watched INTERFACE -fsanitize-coverage=inline-8bit-counters)
endif()

set(pelmora_object_properties POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
  CXX_EXTENSIONS OFF)
# Not with a compiler cache, which finds more of what it keeps without precompiled headers.
set(pelmora_precompiles ON)
if(CMAKE_CXX_COMPILER_LAUNCHER MATCHES "ccache" AND NOT DEFINED ENV{CCACHE_DISABLE})
  set(pelmora_precompiles OFF)
endif()
# Headers that most sources include, compiled once.
if(CMAKE_UNITY_BUILD AND pelmora_precompiles)
  add_library(pelmora_headers OBJECT ${PROJECT_SOURCE_DIR}/cmake/precompiled.cpp)
  target_link_libraries(pelmora_headers PRIVATE pelmora_options)
  set_target_properties(pelmora_headers PROPERTIES ${pelmora_object_properties})
  target_precompile_headers(pelmora_headers PRIVATE <algorithm> <array> <charconv> <chrono> <cmath> <functional>
    <map> <memory> <optional> <set> <span> <sstream> <string> <string_view> <unordered_map> <utility> <variant> <vector>)
endif()

# pelmora_objects(some_target): compiles it as a part of a shared library, with the common headers.
function(pelmora_objects target)
  set_target_properties(${target} PROPERTIES ${pelmora_object_properties})
  if(TARGET pelmora_headers)
    target_precompile_headers(${target} REUSE_FROM pelmora_headers)
  endif()
endfunction()

# pelmora_numerical(some_target -ffp-contract=off): optimised more than the rest.
function(pelmora_numerical target)
  if(NOT MSVC)
    target_compile_options(${target} PRIVATE ${ARGN} ${numeric_optimisation})
    # Common headers are compiled with other flags.
    set_target_properties(${target} PROPERTIES PELMORA_IS_NUMERICAL ON DISABLE_PRECOMPILE_HEADERS ON)
  endif()
endfunction()

function(pelmora_layer folder)
  cmake_parse_arguments(arg "" "" "USES;SOURCES;LIBRARIES" ${ARGN})
  string(REPLACE "/" "_" layer ${folder})
  set(target pelmora_${layer})
  add_library(${target} OBJECT ${arg_SOURCES})
  pelmora_objects(${target})
  target_link_libraries(${target} PRIVATE pelmora_options pelmora_watched ${arg_LIBRARIES})
  foreach(used IN LISTS arg_USES)
    string(REPLACE "/" "_" used ${used})
    if(NOT TARGET pelmora_${used})
      message(FATAL_ERROR "${folder} uses ${used}, which is not a layer before it")
    endif()
  endforeach()
  set_property(GLOBAL APPEND PROPERTY pelmora_layers ${target})
  set_property(GLOBAL APPEND PROPERTY pelmora_libraries ${arg_LIBRARIES})
endfunction()
