# Programs that work beside Tolvenar on a device: one source file each, with resources of its own where
# it has them.
file(GLOB companion_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cpp)
foreach(source IN LISTS companion_sources)
  get_filename_component(name ${source} NAME_WE)
  file(GLOB companion_resources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/${name}.rc)
  add_device_program(${name} ${source} ${companion_resources})
  set_property(GLOBAL APPEND PROPERTY companion_programs ${name})
endforeach()

# The manual stands beside the programs, so that an installation finds it there.
set(manual "")
file(GLOB manual_files CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/res/help/tolvenar*)
foreach(file IN LISTS manual_files)
  get_filename_component(name ${file} NAME)
  set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name})
  add_custom_command(OUTPUT ${copy} DEPENDS ${file}
    COMMAND ${CMAKE_COMMAND} -E copy ${file} ${copy})
  list(APPEND manual ${copy})
endforeach()
add_custom_target(manual ALL DEPENDS ${manual})
add_dependencies(peghelp manual)
