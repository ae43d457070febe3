# What both toolchains for Windows share; PELMORA_MINGW is the prefix of the tools.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${PELMORA_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${PELMORA_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${PELMORA_MINGW}-windres)
# The binutils' own takes a minute and a half for the archive of the whole library, LLVM's no time at all.
find_program(PELMORA_LLVM_AR NAMES llvm-ar-14 llvm-ar)
find_program(PELMORA_LLVM_RANLIB NAMES llvm-ranlib-14 llvm-ranlib)
if(PELMORA_LLVM_AR AND PELMORA_LLVM_RANLIB)
  set(CMAKE_AR ${PELMORA_LLVM_AR} CACHE FILEPATH "")
  set(CMAKE_RANLIB ${PELMORA_LLVM_RANLIB} CACHE FILEPATH "")
endif()

set(CMAKE_FIND_ROOT_PATH /usr/${PELMORA_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
