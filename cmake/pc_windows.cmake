# The program for the PC on 32-bit Windows, and its tests under Wine.
add_compile_definitions(UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601)
add_link_options(-static)
include(cmake/pc_alone.cmake)

if(BUILD_TESTING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  include(cmake/suites.cmake)
  file(GLOB pc_tests CONFIGURE_DEPENDS tests/pc/*.cpp)
  list(FILTER pc_tests EXCLUDE REGEX "${other_system}_test\\.cpp$")
  add_executable(pc_test ${pc_tests})
  target_link_libraries(pc_test PRIVATE ${PC_PROGRAM} pc_options GTest::gtest_main)
  target_compile_definitions(pc_test PRIVATE PC_PROGRAM="$<TARGET_FILE:tolvenar_pc>"
    TOLVENAR_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  add_dependencies(pc_test tolvenar_pc)
  add_suites(windows COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:pc_test> SOURCES ${pc_tests}
    ENVIRONMENT TZ=UTC0 PROPERTIES TIMEOUT 900)
endif()
