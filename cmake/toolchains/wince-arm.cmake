# A real device: any GCC for Windows CE whose programs are found under CE_TOOLCHAIN_PREFIX, such as
# -DCE_TOOLCHAIN_PREFIX=arm-mingw32ce-. The platform's own headers and import libraries are used.
set(CMAKE_SYSTEM_NAME WindowsCE)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CE_TOOLCHAIN_PREFIX "arm-mingw32ce-" CACHE STRING "what the cross compiler's programs begin with")
set(CMAKE_C_COMPILER ${CE_TOOLCHAIN_PREFIX}gcc)
set(CMAKE_CXX_COMPILER ${CE_TOOLCHAIN_PREFIX}g++)
set(CMAKE_RC_COMPILER ${CE_TOOLCHAIN_PREFIX}windres)
set(CMAKE_DLLTOOL ${CE_TOOLCHAIN_PREFIX}dlltool)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
