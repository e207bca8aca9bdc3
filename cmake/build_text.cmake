# Writes HEADER with the commit of SOURCES as TOLVENAR_BUILD, only when it is another one than the header has.
execute_process(COMMAND git -C ${SOURCES} describe --always --dirty OUTPUT_VARIABLE build RESULT_VARIABLE failed
  OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(failed)
  set(build unknown)
endif()
file(CONFIGURE OUTPUT ${HEADER} CONTENT "#define TOLVENAR_BUILD u\"${build}\"\n")
