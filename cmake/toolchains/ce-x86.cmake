# Programs for Windows CE on x86, whose platform calls are cdecl like all others.
include(${CMAKE_CURRENT_LIST_DIR}/i686-w64-mingw32.cmake)
set(CE_CPU x86)
unset(CMAKE_CROSSCOMPILING_EMULATOR)
