# add_suites(TARGET [LABELS …] [PROPERTIES …] SOURCES …): one CTest entry for each GoogleTest suite of a
# program. Starting a program on the simulated device costs more than most cases, and reading the suites
# from the sources needs no run of it.
function(add_suites target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;PROPERTIES")
  set(seen "")
  foreach(source IN LISTS arg_SOURCES)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
    file(STRINGS ${source} lines REGEX "^(TEST|TEST_F|TEST_P|TYPED_TEST)\\(")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^[A-Z_]+\\(([A-Za-z0-9_]+).*" "\\1" suite "${line}")
      if(NOT suite IN_LIST seen)
        list(APPEND seen ${suite})
        add_test(NAME ${target}.${suite}
          COMMAND ${target} --gtest_brief=1 --gtest_filter=${suite}.*:*/${suite}.*:${suite}/*.*)
        if(arg_PROPERTIES)
          set_tests_properties(${target}.${suite} PROPERTIES ${arg_PROPERTIES})
        endif()
      endif()
    endforeach()
  endforeach()
endfunction()
