# Cross-compiles for Windows (32 bit) with mingw-w64, posix threads.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(PELMORA_MINGW i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# The x87 unit would round otherwise than every other build does.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
