# The program for the PC as it is installed: optimised, without sanitizers and tests.
include(GNUInstallDirs)
include(cmake/pc_alone.cmake)
install(TARGETS tolvenar_pc RUNTIME)

# The program itself describes its command line, so that the manual page and the completions are what it takes.
#   install_description(FORM FILE FOLDER)
function(install_description form file folder)
  set(described ${CMAKE_BINARY_DIR}/described/${file})
  add_custom_command(OUTPUT ${described} DEPENDS tolvenar_pc VERBATIM
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/described
    COMMAND sh -c "\"$0\" describe \"$1\" > \"$2\"" $<TARGET_FILE:tolvenar_pc> ${form} ${described})
  add_custom_target(described_${form} ALL DEPENDS ${described})
  install(FILES ${described} DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder})
endfunction()
install_description(man tolvenar.1 man/man1)
install_description(bash tolvenar bash-completion/completions)
install_description(zsh _tolvenar zsh/vendor-completions)
install_description(fish tolvenar.fish fish/vendor_completions.d)
install(DIRECTORY docs/pc/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/tolvenar)

# ./package --pc
file(STRINGS res/version.h version REGEX TOLVENAR_VERSION)
string(REGEX REPLACE ".*\"(.*)\".*" "\\1" version "${version}")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tolvenar)
set(CPACK_PACKAGE_VERSION ${version})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "reads, checks and uses the backup of a Windows CE handheld")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Kestrin <tolvenar@localhost>")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
include(CPack)

# The maker of the storage that ./bench measures it with.
add_executable(make_pair EXCLUDE_FROM_ALL benchmarks/pc/make_pair.cpp)
target_link_libraries(make_pair PRIVATE ${PRODUCT} native_options)
add_test(NAME pc.package COMMAND ${CMAKE_SOURCE_DIR}/tests/scripts/pc_package_test.py ${CMAKE_BINARY_DIR})
