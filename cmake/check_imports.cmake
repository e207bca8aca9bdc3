# cmake -DOBJDUMP=... -DPROGRAMS=... -P check_imports.cmake: fails when a program imports any DLL but
# the platform's three.
foreach(program IN LISTS PROGRAMS)
  execute_process(COMMAND ${OBJDUMP} -p ${program} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "DLL Name: [^\n]+" dlls "${text}")
  list(REMOVE_DUPLICATES dlls)
  list(REMOVE_ITEM dlls "DLL Name: coredll.dll" "DLL Name: commctrl.dll" "DLL Name: commdlg.dll")
  if(dlls)
    message(FATAL_ERROR "${program}: ${dlls}")
  endif()
endforeach()
