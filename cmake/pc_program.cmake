# The program for the PC over the rooms that work on bytes, which are there already. `pc_options` brings the
# compiler's options of the build.
find_package(fmt REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(LibArchive REQUIRED)
target_include_directories(pc_options INTERFACE ${CMAKE_SOURCE_DIR})
target_link_libraries(pc_options INTERFACE fmt::fmt CLI11::CLI11 nlohmann_json::nlohmann_json)
# tar files.
target_link_libraries(pc_options INTERFACE LibArchive::LibArchive)
make_rooms(PC_PROGRAM KINDS pc OPTIONS pc_options)
# serve waits for browsers in threads of its own.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
pkg_check_modules(FUSE REQUIRED IMPORTED_TARGET fuse3)
target_link_libraries(room_pc_mount PRIVATE PkgConfig::FUSE)
target_link_libraries(room_pc_serve PRIVATE PkgConfig::HTTPLIB Threads::Threads)
add_executable(tolvenar_pc pc/program/main.cpp)
set_target_properties(tolvenar_pc PROPERTIES OUTPUT_NAME tolvenar)
target_link_libraries(tolvenar_pc PRIVATE ${PC_PROGRAM} pc_options)
