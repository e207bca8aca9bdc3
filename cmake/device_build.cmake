# The program, the simulated device, the companions and the tests that run on it.
enable_language(ASM RC)
# CMake would add kernel32, user32, gdi32, ... to every link and hide a call that no list has.
set(CMAKE_C_STANDARD_LIBRARIES "")
set(CMAKE_CXX_STANDARD_LIBRARIES "")
# The DLLs, the programs and the tests find one another in one folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
include(cmake/ce_dlls.cmake)
include(cmake/suites.cmake)
include(cmake/rooms.cmake)

set(P ${CMAKE_SOURCE_DIR}/platform)
set(GENERATED ${CMAKE_BINARY_DIR}/generated)
ce_names_header(${GENERATED}/ce_names.h ${P}/coredll.def ${P}/commctrl.def ${P}/commdlg.def)
ce_import_library(coredll coredll.dll CALLS ${P}/coredll.def PLAIN ${P}/coredll_crt.def)
ce_import_library(coredll_calls coredll.dll CALLS ${P}/coredll.def)  # beside a C run time
ce_import_library(commctrl commctrl.dll CALLS ${P}/commctrl.def)
ce_import_library(commdlg commdlg.dll CALLS ${P}/commdlg.def)

# Sources that see Windows CE's headers.
add_library(ce_headers INTERFACE)
target_include_directories(ce_headers INTERFACE ${CMAKE_SOURCE_DIR})
target_include_directories(ce_headers BEFORE INTERFACE ${P}/include ${GENERATED})
target_compile_definitions(ce_headers INTERFACE UNICODE _UNICODE)
# Stored text is char16_t and the platform's is wchar_t, the same 16 bits.
target_compile_options(ce_headers INTERFACE -fno-strict-aliasing)

add_library(program_options INTERFACE)
target_link_libraries(program_options INTERFACE ce_headers warnings)
target_compile_options(program_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti
  -fno-threadsafe-statics -fcheck-new -fno-asynchronous-unwind-tables
  -ffunction-sections -fdata-sections>)

# Everything of the program but its entry point; tests link it too.
make_rooms(PRODUCT KINDS bytes device OPTIONS program_options)
# Every stored byte goes through the checksum and every record through the list and the matching; the smallest
# code of them is slower by a tenth to a half.
set_source_files_properties(snapshot/records/checksum.cpp snapshot/records/object_list.cpp
  snapshot/compare/list_matching.cpp snapshot/compare/state_replay.cpp PROPERTIES COMPILE_OPTIONS -O2)

add_library(start OBJECT platform/start/start.cpp)
target_link_libraries(start PUBLIC program_options)

# A program for the device: no C or C++ run time, nothing but the three platform DLLs.
function(add_device_program name)
  add_executable(${name} WIN32 ${ARGN})
  target_link_libraries(${name} PRIVATE program_options start ${PRODUCT} coredll commctrl commdlg gcc)
  target_link_options(${name} PRIVATE -nostdlib -nostartfiles -Wl,--gc-sections -Wl,--build-id=none
    -s)
endfunction()
file(GLOB resources CONFIGURE_DEPENDS res/*.rc)
add_device_program(Tolvenar app/start/main.cpp ${resources})
include(companions/companions.cmake)
include(simulator/simulator.cmake)

if(BUILD_TESTING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  include(tests/tests.cmake)
  include(benchmarks/benchmarks.cmake)
endif()
