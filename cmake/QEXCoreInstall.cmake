# Install rules: libraries, headers, a CMake package with the components `core` and, where the screen
# is built, `gtk`, pkg-config files.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QEXCore)
set(installed QEXCore_iOS)
if(NOT VELMORA_CORE_ROOT)
  list(APPEND installed VelmoraCore)
  install(DIRECTORY core/include/VelmoraCore DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

set(pkg_config_files qexcore)
if(NOT VELMORA_CORE_ROOT)
  list(APPEND pkg_config_files velmoracore)
endif()
if(QEXCORE_BUILD_GTK)
  list(APPEND installed QEXCore_gtk)
  list(APPEND pkg_config_files qexcore-gtk)
  install(DIRECTORY include/QEXCore_gtk DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

install(TARGETS ${installed} EXPORT QEXCoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/QEXCore_iOS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT QEXCoreTargets NAMESPACE QEXCore:: DESTINATION ${package_dir})

configure_package_config_file(cmake/QEXCoreConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/QEXCoreConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/QEXCoreConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/QEXCoreConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/QEXCoreConfigVersion.cmake
  DESTINATION ${package_dir})

# Relative to where they lie, so that a moved installation still works.
file(RELATIVE_PATH QEXCORE_PC_TO_INCLUDE
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_FULL_INCLUDEDIR})
foreach(name IN LISTS pkg_config_files)
  configure_file(cmake/${name}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
