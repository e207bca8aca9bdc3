# Programs that work beside Tolvenar on a device: one source file each.
file(GLOB companion_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*.cpp)
foreach(source IN LISTS companion_sources)
  get_filename_component(name ${source} NAME_WE)
  add_device_program(${name} ${source})
  set_property(GLOBAL APPEND PROPERTY companion_programs ${name})
endforeach()
