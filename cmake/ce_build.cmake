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
add_test(NAME ${CE_CPU}.package COMMAND ${CMAKE_SOURCE_DIR}/tests/scripts/package_test.py ${CE_CPU}
  ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})

# The program runs on the simulated device, whose own build is there already.
set(device ${CMAKE_SOURCE_DIR}/build/device/bin)
add_test(NAME ${CE_CPU}.story COMMAND ${CMAKE_SOURCE_DIR}/tools/ce/check_run ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
  ${device} ${CMAKE_SOURCE_DIR}/scripts/cedev ${CMAKE_BINARY_DIR}/story)
add_test(NAME ${CE_CPU}.UnattendedTest COMMAND ${CMAKE_SOURCE_DIR}/scripts/wine32 ${device}/e2e_test.exe
  --gtest_brief=1 --gtest_filter=UnattendedTest.*)
set_tests_properties(${CE_CPU}.story ${CE_CPU}.UnattendedTest PROPERTIES TIMEOUT 900
  ENVIRONMENT "DISPLAY=;TOLVENAR_PROGRAMS=${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
