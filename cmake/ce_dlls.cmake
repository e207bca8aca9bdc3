# The DLL lists of platform/*.def and what is made from them:
#   ce_read_list(VAR FILE)                 the names of one list
#   ce_import_library(NAME DLL CALLS LIST... [PLAIN LIST...])  an import library; symbols ce_NAME, or plain NAME
#   ce_simulator_exports(TARGET DLL FORWARDS LISTS...)  module-definition file and loud stubs, see there
#   ce_name_versions(FILE LIST)            the names with a version of platform/versions.txt, for the simulator
#   ce_names_header(FILE LISTS...)         the renaming that platform/include/windows.h includes
function(ce_read_list var file)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  file(STRINGS ${file} lines REGEX "^[A-Za-z_][A-Za-z0-9_]*$")
  list(REMOVE_ITEM lines EXPORTS)
  set(${var} ${lines} PARENT_SCOPE)
endfunction()

function(ce_import_library name dll)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "CALLS;PLAIN")
  set(def "LIBRARY ${dll}\nEXPORTS\n")
  foreach(list IN LISTS arg_CALLS)
    ce_read_list(names ${list})
    foreach(n IN LISTS names)
      string(APPEND def "ce_${n} == ${n}\n")
    endforeach()
  endforeach()
  foreach(list IN LISTS arg_PLAIN)
    ce_read_list(names ${list})
    foreach(n IN LISTS names)
      string(APPEND def "${n}\n")
    endforeach()
  endforeach()
  set(def_file ${CMAKE_CURRENT_BINARY_DIR}/${name}.def)
  file(CONFIGURE OUTPUT ${def_file} CONTENT "${def}")
  set(lib ${CMAKE_CURRENT_BINARY_DIR}/lib${name}.a)
  add_custom_command(OUTPUT ${lib} DEPENDS ${def_file} VERBATIM
    COMMAND ${CMAKE_DLLTOOL} --input-def ${def_file} --output-lib ${lib})
  add_custom_target(${name}_file DEPENDS ${lib})
  add_library(${name} STATIC IMPORTED GLOBAL)
  set_target_properties(${name} PROPERTIES IMPORTED_LOCATION ${lib})
  add_dependencies(${name} ${name}_file)
endfunction()

function(ce_names_header file)
  set(calls "")
  set(definitions "")
  foreach(list IN LISTS ARGN)
    ce_read_list(names ${list})
    foreach(n IN LISTS names)
      string(APPEND calls "#pragma redefine_extname ${n} ce_${n}\n")
      string(APPEND definitions "#pragma redefine_extname ${n} _ce_${n}\n")
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${file} CONTENT "// Made from platform/*.def. GCC writes __imp__ + name for an import, the bare name for a definition.
#ifdef CE_DEFINES_EXPORTS\n${definitions}#else\n${calls}#endif\n")
endfunction()

# Each listed name is, in this order: defined in one of the target's exports_*.cpp sources; the function
# of a DLL of the host, as a row of the forwards file says: behind the gate (NAME DLL FAILURE, where - is
# a call that cannot fail; the DLL "translated" is a function of simulator/windows/translated.h, which has the
# host's values put in for the platform's) or as a plain forwarder (NAME DLL); or a stub that ends the process with a
# message, so that nothing unfinished passes silently. Gated ones are templates over the host function's
# own type (simulator/gate/forward.h), made in the file TARGET_gated.cpp; a one-instruction stub of the
# export's name jumps there.
function(ce_simulator_exports target dll forwards)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${forwards})
  file(STRINGS ${forwards} rows REGEX "^[A-Za-z_][A-Za-z0-9_]* [a-z0-9]+( [-0-9]+)?$")
  foreach(row IN LISTS rows)
    string(REPLACE " " ";" row "${row}")
    list(GET row 0 n)
    list(GET row 1 to_${n})
    list(LENGTH row columns)
    if(columns EQUAL 3)
      list(GET row 2 failure_${n})
    endif()
  endforeach()
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    if(source MATCHES "\\.cpp$")
      set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
      file(STRINGS ${source} lines REGEX "(WINAPI|WINAPIV|CE_CALL) [A-Za-z_][A-Za-z0-9_]*\\(")
      foreach(line IN LISTS lines)
        string(REGEX REPLACE "^.*(WINAPI|WINAPIV|CE_CALL) ([A-Za-z_][A-Za-z0-9_]*)\\(.*$" "\\2" n "${line}")
        set(defined_${n} ON)
      endforeach()
    endif()
  endforeach()
  set(def "LIBRARY ${dll}\nEXPORTS\n")
  set(stubs "")
  set(gated "")
  foreach(list IN LISTS ARGN)
    ce_read_list(names ${list})
    foreach(n IN LISTS names)
      if(defined_${n})
        string(APPEND def "${n} = ce_${n}\n")
      elseif(DEFINED failure_${n})
        string(APPEND def "${n} = ce_${n}\n")
        string(APPEND stubs "    .globl _ce_${n}\n_ce_${n}: jmp *_ce_forward_${n}\n")
        set(forward CE_FORWARD)
        if(to_${n} STREQUAL "translated")
          set(forward CE_FORWARD_TRANSLATED)
        endif()
        if(failure_${n} STREQUAL "-")
          string(APPEND gated "${forward}(${n}, 0, false)\n")
        else()
          string(APPEND gated "${forward}(${n}, ${failure_${n}}, true)\n")
        endif()
      elseif(DEFINED to_${n})
        string(APPEND def "${n} = ${to_${n}}.${n}\n")
      else()
        string(APPEND def "${n} = ce_${n}\n")
        string(APPEND stubs "    .globl _ce_${n}\n_ce_${n}: push $1f\n    call _ce_not_there_yet\n1:  .asciz \"${n}\"\n")
      endif()
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}_exports.def CONTENT "${def}")
  file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}_stubs.S CONTENT "    .text\n${stubs}" @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}_exports.def
                                   ${CMAKE_CURRENT_BINARY_DIR}/${target}_stubs.S)
  if(gated)
    set(gated_file ${CMAKE_CURRENT_BINARY_DIR}/${target}_gated.cpp)
    file(CONFIGURE OUTPUT ${gated_file} CONTENT "// Made from ${forwards}.
#include \"simulator/gate/forward.h\"
#include \"simulator/windows/translated.h\"
#include <commctrl.h>
${gated}")
    # The desktop's view; without its dllimport marks a function's address is a constant.
    set_source_files_properties(${gated_file} PROPERTIES COMPILE_DEFINITIONS
      "UNICODE;_UNICODE;NOMINMAX;_WIN32_WINNT=0x0601;_KERNEL32_;_USER32_;_GDI32_;_ADVAPI32_;_COMCTL32_;WINBASEAPI=")
    target_sources(${target} PRIVATE ${gated_file})
  endif()
  get_filename_component(stem ${dll} NAME_WE)
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${stem} SUFFIX .dll)
endfunction()

# ce_call_ids(FILE LISTS...): the names of all calls as an enumeration, in the order of the lists.
function(ce_call_ids file)
  set(rows "")
  set(names "")
  foreach(list IN LISTS ARGN)
    ce_read_list(names_of_list ${list})
    foreach(n IN LISTS names_of_list)
      string(APPEND rows "    ${n},\n")
      string(APPEND names "    \"${n}\",\n")
    endforeach()
  endforeach()
  file(CONFIGURE OUTPUT ${file} CONTENT "// Made from platform/*.def.
#pragma once
namespace sim {
enum class Call : unsigned short {
${rows}    kCount
};
inline constexpr const char* kCallNames[] = {
${names}};
}  // namespace sim
")
endfunction()

function(ce_name_versions file list)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  file(STRINGS ${list} lines REGEX "^[A-Za-z_][A-Za-z0-9_]* [0-9]")
  set(rows "")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^([^ ]+) ([0-9.]+)$" "    {L\"\\1\", \\2},\n" row "${line}")
    string(APPEND rows "${row}")
  endforeach()
  file(CONFIGURE OUTPUT ${file} CONTENT "// Made from ${list}.
#pragma once
namespace sim {
inline constexpr struct {
    const wchar_t* name;
    double version;
} kNameVersions[] = {
${rows}};
}  // namespace sim
")
endfunction()
