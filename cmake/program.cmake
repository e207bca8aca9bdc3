# The program and its companions, for the simulated device and for real ones. Who includes this defines
# link_device_program(NAME SCRIPT…), which gives a program its resources, its entry point and the platform's DLLs, and
# may have added options of its compiler to ce_headers.
include(cmake/ce_dlls.cmake)
include(cmake/rooms.cmake)

set(P ${CMAKE_SOURCE_DIR}/platform)
set(GENERATED ${CMAKE_BINARY_DIR}/generated)
ce_names_header(${GENERATED}/ce_names.h ${P}/coredll.def ${P}/commctrl.def ${P}/commdlg.def)

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

# A program for the device: no C or C++ run time, nothing but the platform's DLLs.
function(add_device_program name)
  set(sources ${ARGN})
  set(scripts ${ARGN})
  list(FILTER sources EXCLUDE REGEX "\\.rc$")
  list(FILTER scripts INCLUDE REGEX "\\.rc$")
  add_executable(${name} WIN32 ${sources})
  target_link_libraries(${name} PRIVATE program_options start ${PRODUCT})
  target_link_options(${name} PRIVATE -nostdlib -nostartfiles -Wl,--gc-sections -Wl,--build-id=none)
  link_device_program(${name} ${scripts})
endfunction()
file(GLOB resources CONFIGURE_DEPENDS res/*.rc)
add_device_program(Tolvenar app/start/main.cpp ${resources})
# Asked for at each build: the sources may be another commit's since the last.
add_custom_target(build_text BYPRODUCTS ${GENERATED}/build_text.h VERBATIM
  COMMAND ${CMAKE_COMMAND} -DSOURCES=${CMAKE_SOURCE_DIR} -DHEADER=${GENERATED}/build_text.h
    -P ${CMAKE_SOURCE_DIR}/cmake/build_text.cmake)
add_dependencies(Tolvenar build_text)
include(companions/companions.cmake)
