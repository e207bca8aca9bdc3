# Windows CE on CPUs whose compilers make ELF programs: headers of the desktop's compiler, stubs for the platform's
# calls, and tools/ce/elf_to_pe behind the linker.
enable_language(ASM)
find_program(CE_WINDRES i686-w64-mingw32-windres REQUIRED)
find_program(CE_RESOURCE_LINKER i686-w64-mingw32-gcc-posix REQUIRED)
execute_process(COMMAND ${CE_RESOURCE_LINKER} -print-libgcc-file-name OUTPUT_VARIABLE libgcc
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(desktop ${libgcc} DIRECTORY)
execute_process(COMMAND ${CMAKE_C_COMPILER} -print-file-name=include OUTPUT_VARIABLE own
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

set(CE_INCLUDE ${CMAKE_BINARY_DIR}/ce_include)
# <malloc.h> asks for it; nothing of it is used.
file(CONFIGURE OUTPUT ${CE_INCLUDE}/mm_malloc.h CONTENT "")
set(windows_flags -fshort-wchar -D_WIN32 -DWIN32 -D__WIN32__ -D__MINGW32__ -D__MSVCRT__ -D__stdcall= -D__cdecl=
  -D__fastcall= -D__thiscall= -D_cdecl= -D_stdcall= "-D__declspec(x)=" ${CE_HEADER_FLAGS} -nostdinc)
foreach(folder ${CE_INCLUDE} ${desktop}/include/c++ ${desktop}/include/c++/i686-w64-mingw32
    ${desktop}/include/c++/backward ${own} /usr/i686-w64-mingw32/include)
  list(APPEND windows_flags "SHELL:-isystem ${folder}")
endforeach()
add_compile_options(${CE_CPU_FLAGS} "$<$<COMPILE_LANGUAGE:CXX>:${windows_flags}>")
add_link_options(${CE_CPU_FLAGS})

# The resources of a program as a DLL of the desktop's, from which elf_to_pe takes them.
function(ce_resources result name)
  set(objects "")
  foreach(script IN LISTS ARGN)
    get_filename_component(script ${script} ABSOLUTE)
    get_filename_component(stem ${script} NAME_WE)
    set(object ${CMAKE_BINARY_DIR}/resources/${stem}.obj)
    add_custom_command(OUTPUT ${object} DEPENDS ${script} ${CMAKE_SOURCE_DIR}/res/resource.h VERBATIM
      COMMAND ${CE_WINDRES} -I ${P}/include -I ${GENERATED} -I ${CMAKE_SOURCE_DIR} -I ${CMAKE_SOURCE_DIR}/res
        -DUNICODE -O coff ${script} ${object})
    list(APPEND objects ${object})
  endforeach()
  set(dll ${CMAKE_BINARY_DIR}/resources/${name}.dll)
  add_custom_command(OUTPUT ${dll} DEPENDS ${objects} VERBATIM
    COMMAND ${CE_RESOURCE_LINKER} -shared -nostdlib -nostartfiles -Wl,-e,0 -o ${dll} ${objects})
  set(${result} ${dll} PARENT_SCOPE)
endfunction()

function(link_device_program name)
  set(resources "")
  if(ARGN)
    ce_resources(resources ${name} ${ARGN})
    add_custom_target(${name}_resources DEPENDS ${resources})
    add_dependencies(${name} ${name}_resources)
  endif()
  set(script ${CMAKE_SOURCE_DIR}/cmake/ce/program.ld)
  set(tool ${CMAKE_SOURCE_DIR}/tools/ce/elf_to_pe)
  target_link_libraries(${name} PRIVATE platform_calls)
  target_link_options(${name} PRIVATE -T ${script} ${CE_LINK_FLAGS})
  set_target_properties(${name} PROPERTIES SUFFIX .elf RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/elf
    LINK_DEPENDS "${script};${tool};${resources}")
  file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  add_custom_command(TARGET ${name} POST_BUILD VERBATIM
    COMMAND ${tool} $<TARGET_FILE:${name}> ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}.exe ${CE_VERSION} ${resources})
endfunction()

# What a disassembler reads of a program.
function(ce_disassembled result name)
  set(${result} ${CMAKE_BINARY_DIR}/elf/${name}.elf PARENT_SCOPE)
endfunction()

macro(ce_finish)
  set(lists ${P}/coredll.def ${P}/commctrl.def ${P}/commdlg.def)
  set(stubs ${CMAKE_BINARY_DIR}/generated/platform_calls.S)
  add_custom_command(OUTPUT ${stubs} VERBATIM
    DEPENDS ${CMAKE_SOURCE_DIR}/tools/ce/import_stubs ${lists} ${P}/coredll_crt.def
    COMMAND ${CMAKE_SOURCE_DIR}/tools/ce/import_stubs ${CE_CPU} ${lists} -- ${P}/coredll_crt.def > ${stubs})
  add_library(platform_calls STATIC ${stubs})
  if(CE_CPU STREQUAL "mips")
    # The compiler's own library is made for another ABI.
    target_sources(platform_calls PRIVATE ${CMAKE_SOURCE_DIR}/platform/start/long_division.c)
    set_source_files_properties(${CMAKE_SOURCE_DIR}/platform/start/long_division.c PROPERTIES
      COMPILE_OPTIONS "-O2;-ffreestanding;-ffunction-sections")
  else()
    target_link_libraries(platform_calls PUBLIC gcc)
  endif()
endmacro()
