# Windows CE on x86: the desktop's linker makes the program, with cdecl calls and the system's own address.
enable_language(RC)
add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-march=i486>
  "$<$<COMPILE_LANGUAGE:C,CXX>:SHELL:-U__stdcall -D__stdcall= -U_stdcall -D_stdcall=>")

function(link_device_program name)
  target_sources(${name} PRIVATE ${ARGN})
  target_link_libraries(${name} PRIVATE coredll commctrl commdlg gcc)
  target_link_options(${name} PRIVATE -s -Wl,--subsystem,wince:${CE_VERSION} -Wl,--image-base,0x10000
    -Wl,--disable-dynamicbase,--disable-reloc-section,--disable-nxcompat -Wl,--stack,0x10000)
endfunction()

# What a disassembler reads of a program.
function(ce_disassembled result name)
  set(${result} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}.exe PARENT_SCOPE)
endfunction()

macro(ce_finish)
  ce_import_library(coredll coredll.dll CALLS ${P}/coredll.def PLAIN ${P}/coredll_crt.def)
  ce_import_library(commctrl commctrl.dll CALLS ${P}/commctrl.def)
  ce_import_library(commdlg commdlg.dll CALLS ${P}/commdlg.def)
endmacro()
