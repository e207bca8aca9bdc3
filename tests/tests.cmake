# One GoogleTest program for each folder of tests/; its suites become CTest entries.
add_test(NAME imports COMMAND ${CMAKE_COMMAND} -DOBJDUMP=${CMAKE_OBJDUMP}
  -DPROGRAMS=$<TARGET_FILE:Tolvenar> -P ${CMAKE_SOURCE_DIR}/cmake/check_imports.cmake)

foreach(check includes resources format oddities)
  add_test(NAME check_${check} COMMAND ${CMAKE_SOURCE_DIR}/scripts/check_${check})
endforeach()

add_test(NAME check_includes_seeds COMMAND ${CMAKE_SOURCE_DIR}/tests/scripts/check_includes_test.py)

# The program used at random, each seed on a device of its own.
foreach(seed 1 2 3)
  add_test(NAME random_use.${seed} COMMAND
    ${CMAKE_SOURCE_DIR}/tools/random_use ${CMAKE_SOURCE_DIR}/scripts/cedev $<TARGET_FILE_DIR:Tolvenar> ${seed} 30)
  set_tests_properties(random_use.${seed} PROPERTIES TIMEOUT 900 ENVIRONMENT DISPLAY=)
endforeach()

# What the program for the PC, which the native build makes, gives out of the storages of devices, and the pairs that it
# makes for them.
set(pc_program ${CMAKE_SOURCE_DIR}/build/native/bin/tolvenar)
function(add_device_story tool seed)
  add_test(NAME ${tool}.${seed} COMMAND ${CMAKE_SOURCE_DIR}/tools/${tool} ${CMAKE_SOURCE_DIR}/scripts/cedev
    $<TARGET_FILE_DIR:Tolvenar> ${pc_program} ${seed})
  set_tests_properties(${tool}.${seed} PROPERTIES TIMEOUT 900 ENVIRONMENT DISPLAY= REQUIRED_FILES ${pc_program} ${ARGN})
endfunction()
foreach(seed demo 1 2 3 4 5)
  add_device_story(device_exports ${seed})
endforeach()
foreach(seed RANGE 6 50)
  add_device_story(device_exports ${seed} LABELS whole)
endforeach()
add_device_story(device_new_pairs 1)
foreach(seed demo 2 3 4 5)
  add_device_story(device_new_pairs ${seed} LABELS whole)
endforeach()

# Calls are counted, not timed: they are the same on every machine.
add_test(NAME call_counts COMMAND
  ${CMAKE_SOURCE_DIR}/tools/bench_calls --objects 100 --kept ${CMAKE_SOURCE_DIR}/tests/call_counts.md
  ${CMAKE_SOURCE_DIR}/scripts/cedev $<TARGET_FILE_DIR:Tolvenar> ${CMAKE_BINARY_DIR}/call_counts)
set_tests_properties(call_counts PROPERTIES TIMEOUT 900 ENVIRONMENT DISPLAY=)

# What tests share: a fresh device for each case, host-side helpers.
file(GLOB support_sources CONFIGURE_DEPENDS tests/support/*.cpp)
add_library(test_support STATIC ${support_sources})
target_link_libraries(test_support PUBLIC ce_headers warnings ${PRODUCT} simcore GTest::gtest
  coredll_calls)
# The two folders that tests look into, in a header, so that no other source is compiled for them.
file(CONFIGURE OUTPUT ${GENERATED}/test_folders.h CONTENT
  "#define TOLVENAR_SOURCE_DIR \"${CMAKE_SOURCE_DIR}\"\n#define TOLVENAR_BIN_DIR \"${CMAKE_BINARY_DIR}/bin\"\n")

# Programs that tests start on a device: one source file each, no part of the product.
file(GLOB probe_sources CONFIGURE_DEPENDS tests/programs/*.cpp)
set(probes "")
foreach(source IN LISTS probe_sources)
  get_filename_component(name ${source} NAME_WE)
  add_device_program(${name} ${source})
  list(APPEND probes ${name})
endforeach()
get_property(companions GLOBAL PROPERTY companion_programs)

file(GLOB test_folders CONFIGURE_DEPENDS LIST_DIRECTORIES true RELATIVE ${CMAKE_SOURCE_DIR}/tests
  tests/*)
foreach(folder IN LISTS test_folders)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS tests/${folder}/*.cpp)
  file(GLOB_RECURSE test_resources CONFIGURE_DEPENDS tests/${folder}/*.rc)
  # The native build has fuzzers, tests of its own, and those of the program for the PC.
  if(NOT sources OR folder MATCHES "^(support|programs|native|fuzz|pc)$")
    continue()
  endif()
  set(name ${folder}_test)
  add_executable(${name} ${sources} ${test_resources})
  target_link_libraries(${name} PRIVATE test_support warnings GTest::gtest_main ${PRODUCT} simcore
    coredll_calls commctrl commdlg ${SIM_HOST_LIBRARIES})
  target_link_options(${name} PRIVATE -static)
  add_dependencies(${name} ce_guest sim_coredll sim_commctrl sim_commdlg Tolvenar ${probes}
    ${companions})
  add_suites(${name} COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${name}> SOURCES ${sources}
    PROPERTIES TIMEOUT 900)
endforeach()

# What the program does as a whole, on the other named devices too (docs/testing.md).
file(GLOB e2e_sources CONFIGURE_DEPENDS tests/e2e/*_test.cpp)
list(FILTER e2e_sources EXCLUDE REGEX "/resource")
foreach(name strict-2.11 strict-4)
  add_test(NAME ${name}.story COMMAND ${CMAKE_SOURCE_DIR}/tools/try_devices ${CMAKE_SOURCE_DIR}/scripts/cedev
    ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} ${name})
  set_tests_properties(${name}.story PROPERTIES TIMEOUT 900 ENVIRONMENT DISPLAY=)
  add_suites(${name} COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:e2e_test> SOURCES ${e2e_sources}
    ENVIRONMENT TOLVENAR_TEST_LIKE=${name} PROPERTIES TIMEOUT 900)
endforeach()
