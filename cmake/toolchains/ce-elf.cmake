# What the compilers that make ELF programs share. tools/ce/elf_to_pe makes the device's programs of these.
set(CMAKE_C_COMPILER ${CE_TOOLS}-gcc)
set(CMAKE_CXX_COMPILER ${CE_TOOLS}-g++)
set(CMAKE_ASM_COMPILER ${CE_TOOLS}-gcc)
# There is no C run time to link a first trial with.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
