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
