# The program, the simulated device, the companions and the tests that run on it.
enable_language(ASM RC)
# CMake would add kernel32, user32, gdi32, ... to every link and hide a call that no list has.
set(CMAKE_C_STANDARD_LIBRARIES "")
set(CMAKE_CXX_STANDARD_LIBRARIES "")
# The DLLs, the programs and the tests find one another in one folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
include(cmake/suites.cmake)

# The host's loader hands nothing to a program, so another entry point than a device's stands before it.
function(link_device_program name)
  target_sources(${name} PRIVATE ${ARGN} ${CMAKE_SOURCE_DIR}/platform/start/simulated_loader.cpp)
  target_link_libraries(${name} PRIVATE coredll commctrl commdlg gcc)
  target_link_options(${name} PRIVATE -Wl,-e,_SimulatedLoaderStart -s)
endfunction()
include(cmake/program.cmake)
# A thread of a device has 64 KB of stack, which the deepest paths of names need.
target_compile_options(program_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wframe-larger-than=4096>)

ce_import_library(coredll coredll.dll CALLS ${P}/coredll.def PLAIN ${P}/coredll_crt.def)
ce_import_library(coredll_calls coredll.dll CALLS ${P}/coredll.def)  # beside a C run time
ce_import_library(commctrl commctrl.dll CALLS ${P}/commctrl.def)
ce_import_library(commdlg commdlg.dll CALLS ${P}/commdlg.def)
include(simulator/simulator.cmake)

if(BUILD_TESTING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  include(tests/tests.cmake)
  include(benchmarks/benchmarks.cmake)
endif()
