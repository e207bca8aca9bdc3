# The program for the PC over the rooms that work on bytes, which are there already. `pc_options` brings the
# compiler's options of the build.
target_include_directories(pc_options INTERFACE ${CMAKE_SOURCE_DIR})
if(CMAKE_SYSTEM_NAME STREQUAL "Windows")
  # The libraries are headers here. Those of this machine's C library, beside which they lie, would be found before the
  # compiler's own.
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
  foreach(library fmt CLI nlohmann)
    file(CREATE_LINK /usr/include/${library} ${CMAKE_BINARY_DIR}/headers/${library} SYMBOLIC)
  endforeach()
  target_include_directories(pc_options SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers)
  target_compile_definitions(pc_options INTERFACE FMT_HEADER_ONLY)
else()
  find_package(fmt REQUIRED)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_package(Threads REQUIRED)
  target_link_libraries(pc_options INTERFACE fmt::fmt CLI11::CLI11 nlohmann_json::nlohmann_json Threads::Threads)
endif()
make_rooms(PC_PROGRAM KINDS pc OPTIONS pc_options)
add_executable(tolvenar_pc pc/command/main${this_system}.cpp)
set_target_properties(tolvenar_pc PROPERTIES OUTPUT_NAME tolvenar)
target_link_libraries(tolvenar_pc PRIVATE ${PC_PROGRAM} pc_options)
