# Cross-compiles for Windows (64 bit) with mingw-w64, posix threads.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(PELMORA_MINGW x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
