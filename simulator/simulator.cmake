# The simulated device: `simcore` (the host's side, ordinary Win32 code), the three DLLs that a program
# sees, and `cedev`, the command that makes, fills, inspects, drives and breaks a device. Its rooms are of the
# kind `host` in cmake/rooms.txt. They share the one library `simcore`, since every user of one needs nearly
# all; scripts/check_includes holds them in their order.
set(SIM ${CMAKE_CURRENT_LIST_DIR})
ce_call_ids(${GENERATED}/call_ids.h ${P}/coredll.def ${P}/commctrl.def ${P}/commdlg.def)
ce_name_versions(${GENERATED}/name_versions.h ${P}/versions.txt)
set(SIM_HOST_LIBRARIES comctl32 comdlg32 gdi32 user32 advapi32 kernel32)

# Header-only, so the machine's own copy serves; its folder alone, or the machine's C headers come along.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/host_include)
file(CREATE_LINK /usr/include/nlohmann ${CMAKE_BINARY_DIR}/host_include/nlohmann SYMBOLIC)

file(GLOB sim_sources CONFIGURE_DEPENDS ${SIM}/*/*.cpp)
list(FILTER sim_sources EXCLUDE REGEX "/simulator/(exports|cedev|guest)/")
add_library(simcore STATIC ${sim_sources})
target_include_directories(simcore PUBLIC ${CMAKE_SOURCE_DIR} ${GENERATED})
target_include_directories(simcore SYSTEM PUBLIC ${CMAKE_BINARY_DIR}/host_include)
target_compile_definitions(simcore PRIVATE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
  _WIN32_WINNT=0x0601)
target_link_libraries(simcore PRIVATE warnings INTERFACE ${SIM_HOST_LIBRARIES})

file(GLOB export_sources CONFIGURE_DEPENDS ${SIM}/exports/*.cpp)
add_library(sim_coredll SHARED ${export_sources})
ce_simulator_exports(sim_coredll coredll.dll ${SIM}/exports/coredll.forwards ${P}/coredll.def
  ${P}/coredll_crt.def ${SIM}/exports/control.def)
# Exports see Windows CE's headers, so the compiler checks each against the declaration that the
# program uses; the desktop's dllimport marks are taken away from what is defined here.
set_source_files_properties(${export_sources} PROPERTIES
  COMPILE_DEFINITIONS "UNICODE;_UNICODE;CE_DEFINES_EXPORTS;_KERNEL32_;_USER32_;_GDI32_;_ADVAPI32_;_COMDLG32_;WINBASEAPI="
  INCLUDE_DIRECTORIES "${P}/include;${GENERATED};${CMAKE_SOURCE_DIR}")
target_link_libraries(sim_coredll PRIVATE warnings simcore ${SIM_HOST_LIBRARIES})
target_link_options(sim_coredll PRIVATE -static)
foreach(dll commctrl commdlg)
  add_library(sim_${dll} SHARED)
  ce_simulator_exports(sim_${dll} ${dll}.dll ${SIM}/exports/${dll}.forwards ${P}/${dll}.def)
  target_link_options(sim_${dll} PRIVATE -nostdlib -Wl,-e,0)
  set_target_properties(sim_${dll} PROPERTIES LINKER_LANGUAGE C)
endforeach()

file(GLOB cedev_sources CONFIGURE_DEPENDS ${SIM}/cedev/*.cpp)
if(cedev_sources)
  add_executable(cedev ${cedev_sources})
  target_compile_definitions(cedev PRIVATE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
  target_link_libraries(cedev PRIVATE warnings simcore ${SIM_HOST_LIBRARIES})
  target_link_options(cedev PRIVATE -static -municode)
endif()

# Runs programs that were built for real devices. They stand at an address of their own, so this one stands elsewhere.
file(GLOB guest_sources CONFIGURE_DEPENDS ${SIM}/guest/*.cpp)
add_executable(ce_guest ${guest_sources} ${SIM}/host/host_files.cpp)
target_include_directories(ce_guest PRIVATE ${CMAKE_SOURCE_DIR})
target_compile_definitions(ce_guest PRIVATE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
set_source_files_properties(${guest_sources} PROPERTIES COMPILE_OPTIONS -O2)
target_link_libraries(ce_guest PRIVATE warnings ${SIM_HOST_LIBRARIES})
target_link_options(ce_guest PRIVATE -static -mwindows -Wl,--image-base,0x60000000,--disable-dynamicbase)
