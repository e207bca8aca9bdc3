# The program and its companions for real devices of one CPU, CE_CPU. The headers are those of the desktop's compiler
# for every CPU; the platform's differences stand in platform/include.
set(CMAKE_C_STANDARD_LIBRARIES "")
set(CMAKE_CXX_STANDARD_LIBRARIES "")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# The oldest version of the system whose loader takes the program; a file's header says it to every loader.
set(CE_VERSION 2.11)
if(CE_CPU STREQUAL "x86")
  include(cmake/ce/x86.cmake)
else()
  include(cmake/ce/elf.cmake)
endif()
include(cmake/program.cmake)
ce_finish()

# What a device could not run is found without one.
get_property(programs GLOBAL PROPERTY companion_programs)
list(REMOVE_ITEM programs peghelp)  # the system's own on a device
foreach(program Tolvenar ${programs})
  ce_disassembled(code ${program})
  add_test(NAME ${CE_CPU}.${program} COMMAND ${CMAKE_SOURCE_DIR}/tools/ce/check_program ${CE_CPU}
    ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${program}.exe ${code} ${CMAKE_OBJDUMP})
endforeach()
# Any of the programs does; this one is disassembled quickly.
ce_disassembled(code kestrin_tolvenar_agent)
add_test(NAME ${CE_CPU}.check_program_seeds COMMAND ${CMAKE_SOURCE_DIR}/tests/scripts/check_program_test.py ${CE_CPU}
  ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/kestrin_tolvenar_agent.exe ${code} ${CMAKE_OBJDUMP})
add_test(NAME ${CE_CPU}.package COMMAND ${CMAKE_SOURCE_DIR}/tests/scripts/package_test.py ${CE_CPU}
  ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})

# The program runs on the simulated device, whose own build is there already.
set(device ${CMAKE_SOURCE_DIR}/build/device/bin)
add_test(NAME ${CE_CPU}.story COMMAND ${CMAKE_SOURCE_DIR}/tools/ce/check_run ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
  ${device} ${CMAKE_SOURCE_DIR}/scripts/cedev ${CMAKE_BINARY_DIR}/story)
set_tests_properties(${CE_CPU}.story PROPERTIES TIMEOUT 900 ENVIRONMENT DISPLAY=)

# The suites of tests/e2e that start the program, with this CPU's. One is run each time; the label is of those that
# ./test runs with --all alone.
include(cmake/suites.cmake)
function(add_program_suites)
  add_suites(${CE_CPU} COMMAND ${CMAKE_SOURCE_DIR}/scripts/wine32 ${device}/e2e_test.exe
    ENVIRONMENT TOLVENAR_PROGRAMS=${CMAKE_RUNTIME_OUTPUT_DIRECTORY} ${ARGN})
endfunction()
set(sample ${CMAKE_SOURCE_DIR}/tests/e2e/unattended_test.cpp)
file(GLOB e2e_sources CONFIGURE_DEPENDS tests/e2e/*_test.cpp)
list(REMOVE_ITEM e2e_sources ${sample})
set(whole "")
foreach(source IN LISTS e2e_sources)
  file(STRINGS ${source} starts REGEX "(program_test|ui_test|launch_fixture)\\.h")
  if(starts)
    list(APPEND whole ${source})
  endif()
endforeach()
add_program_suites(SOURCES ${sample} PROPERTIES TIMEOUT 900)
add_program_suites(SOURCES ${whole} PROPERTIES TIMEOUT 1800 LABELS whole)
