# The platform-free code on this machine, 64 bit, under AddressSanitizer and UBSan, with its tests and
# fuzzers. GoogleTest itself is built without: it takes seven times as long with sanitizers.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
add_library(sanitized INTERFACE)
target_compile_options(sanitized INTERFACE -g -O1 -fno-omit-frame-pointer -fno-strict-aliasing
  -fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all)
add_link_options(-fsanitize=address,undefined)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  target_compile_options(sanitized INTERFACE -fsanitize=fuzzer-no-link)
endif()

include(cmake/rooms.cmake)
add_library(native_options INTERFACE)
target_include_directories(native_options INTERFACE ${CMAKE_SOURCE_DIR})
target_link_libraries(native_options INTERFACE sanitized warnings)
target_compile_options(native_options INTERFACE -fno-exceptions -fno-rtti)
make_rooms(PRODUCT KINDS bytes OPTIONS native_options)

if(BUILD_TESTING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  include(GoogleTest)
  add_library(recording_log STATIC tests/native/recording_log.cpp)
  target_include_directories(recording_log PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(recording_log PUBLIC ${PRODUCT} sanitized PRIVATE warnings)
  room_tests(bytes_tests bytes)
  # Those of tests/native need allocations that fail or a log that can be read, and run here only.
  file(GLOB native_tests CONFIGURE_DEPENDS tests/native/*.cpp)
  list(REMOVE_ITEM native_tests ${CMAKE_SOURCE_DIR}/tests/native/recording_log.cpp)
  add_executable(native_test ${bytes_tests} ${native_tests})
  target_link_libraries(native_test PRIVATE recording_log GTest::gtest_main)
  gtest_discover_tests(native_test TEST_PREFIX native. NO_PRETTY_VALUES DISCOVERY_MODE PRE_TEST)
  # A storage of three states that a device wrote, read on this machine.
  add_executable(read_storage tests/native/programs/read_storage.cpp)
  target_link_libraries(read_storage PRIVATE recording_log warnings)
  set(pair ${CMAKE_SOURCE_DIR}/tests/data/three_states)
  add_test(NAME read_storage COMMAND sh -c
    "$<TARGET_FILE:read_storage> ${pair}/Home 1 3 | diff -u ${pair}/expected.txt -")
  file(GLOB fuzzers CONFIGURE_DEPENDS tests/fuzz/*_fuzz.cpp)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # 100,000 runs of each, fewer where a run costs more: all of them together are a minute at most.
    set(runs_journal_fuzz 12000)
    foreach(source IN LISTS fuzzers)
      get_filename_component(name ${source} NAME_WE)
      add_executable(${name} ${source})
      target_link_libraries(${name} PRIVATE recording_log warnings)
      target_link_options(${name} PRIVATE -fsanitize=fuzzer)
      # Inputs found on the way stay in the build folder; the corpus of the tree is only read.
      set(found ${CMAKE_BINARY_DIR}/fuzz/${name})
      file(MAKE_DIRECTORY ${found})
      if(NOT DEFINED runs_${name})
        set(runs_${name} 100000)
      endif()
      add_test(NAME ${name} COMMAND ${name} -runs=${runs_${name}} -max_len=1024 -seed=1 ${found}
        ${CMAKE_SOURCE_DIR}/tests/fuzz/corpus/${name})
    endforeach()
  endif()
endif()
