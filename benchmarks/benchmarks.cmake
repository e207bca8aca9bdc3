# One program for each source file, with the resources of its name if there are any; ./bench runs them.
file(GLOB benchmark_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*_bench.cpp)
foreach(source IN LISTS benchmark_sources)
  get_filename_component(name ${source} NAME_WE)
  file(GLOB resources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/${name}.rc)
  add_executable(${name} ${source} ${resources})
  target_link_libraries(${name} PRIVATE warnings test_support ${PRODUCT} simcore coredll_calls commctrl
    commdlg ${SIM_HOST_LIBRARIES})
  target_link_options(${name} PRIVATE -static)
  add_dependencies(${name} sim_coredll sim_commctrl sim_commdlg)
endforeach()

# What backups and restores are held against; it runs on a device, as Tolvenar does.
file(GLOB floor_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/floor/*.cpp)
add_device_program(floor ${floor_sources} ${CMAKE_SOURCE_DIR}/res/progress.rc)
