# add_suites(PREFIX COMMAND … SOURCES … [ENVIRONMENT …] [PROPERTIES …]): one CTest entry, PREFIX.SUITE, for each
# GoogleTest suite of the program that COMMAND starts. Starting a program on the simulated device costs more than most
# cases, and reading the suites from the sources needs no run of it.
#
# A suite that takes long is cut into shards, as many as tests/shards.txt says, so that they run beside each other and
# begin before the others.
set_property(DIRECTORY ${CMAKE_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS tests/shards.txt)
file(STRINGS ${CMAKE_SOURCE_DIR}/tests/shards.txt shard_lines REGEX "^[A-Za-z]")
foreach(line IN LISTS shard_lines)
  string(REGEX MATCH "^([A-Za-z0-9_]+) +([0-9]+)$" matched "${line}")
  set(shards_of_${CMAKE_MATCH_1} ${CMAKE_MATCH_2})
endforeach()

# What looks at the screen's pixels has an X display of its own. All others run without one: Wine's windows, messages and
# input are then the same, but no X server takes or gives the focus, or moves the pointer, at a moment of its own choice.
set(LOOKS_REGEX "TakeScreenshot|screenshot|tree_window_fixture.h")

function(add_suite prefix suite command environment properties)
  set(shards 1)
  if(DEFINED shards_of_${suite})
    set(shards ${shards_of_${suite}})
  endif()
  foreach(shard RANGE 1 ${shards})
    set(name ${prefix}.${suite})
    if(shards GREATER 1)
      string(APPEND name .${shard})
    endif()
    add_test(NAME ${name}
      COMMAND ${command} --gtest_brief=1 --gtest_filter=${suite}.*:*/${suite}.*:${suite}/*.*)
    set(shard_environment ${environment})
    if(shards GREATER 1)
      math(EXPR index "${shard} - 1")
      list(APPEND shard_environment GTEST_TOTAL_SHARDS=${shards} GTEST_SHARD_INDEX=${index})
      set_tests_properties(${name} PROPERTIES COST 100)
    endif()
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${shard_environment}" ${properties})
  endforeach()
endfunction()

function(add_suites prefix)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "COMMAND;SOURCES;ENVIRONMENT;PROPERTIES")
  set(seen "")
  foreach(source IN LISTS arg_SOURCES)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    file(STRINGS ${source} lines REGEX "^(TEST|TEST_F|TEST_P|TYPED_TEST)\\(")
    file(STRINGS ${source} looks REGEX "${LOOKS_REGEX}")
    if(looks)
      set(command ${CMAKE_SOURCE_DIR}/scripts/own_display ${arg_COMMAND})
      set(environment ${arg_ENVIRONMENT})
    else()
      set(command ${arg_COMMAND})
      set(environment DISPLAY= ${arg_ENVIRONMENT})
    endif()
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^[A-Z_]+\\(([A-Za-z0-9_]+).*" "\\1" suite "${line}")
      if(NOT suite IN_LIST seen)
        list(APPEND seen ${suite})
        add_suite(${prefix} ${suite} "${command}" "${environment}" "${arg_PROPERTIES}")
      endif()
    endforeach()
  endforeach()
endfunction()
