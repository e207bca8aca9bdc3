# Programs for Windows CE on ARM: a StrongARM or later (ARMv4, no Thumb, no floating-point unit).
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CE_CPU arm)
set(CE_TOOLS arm-none-eabi)
set(CE_CPU_FLAGS -march=armv4 -marm -msoft-float -fno-short-enums)
set(CE_LINK_FLAGS -Wl,--fix-v4bx,--no-wchar-size-warning,--no-enum-size-warning)
include(${CMAKE_CURRENT_LIST_DIR}/ce-elf.cmake)
