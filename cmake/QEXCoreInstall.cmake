# Install rules: libraries, headers, a CMake package with the components `core` and, where it is
# built, `gtk`, pkg-config files. Install components: `library` and `gtk` hold what programs need to
# run, `development` and `gtk_development` what building them needs besides.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QEXCore)
set(installed QEXCore_iOS)
if(NOT VELMORA_CORE_ROOT)
  list(APPEND installed VelmoraCore)
  install(DIRECTORY core/include/VelmoraCore
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
endif()

# qexcore_install(<component> <export> <file> <target>...): libraries, and how CMake finds them.
function(qexcore_install component export file)
  set(development ${component}_development)
  if(component STREQUAL "library")
    set(development development)
  endif()
  install(TARGETS ${ARGN} EXPORT ${export} LIBRARY
    DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${component} NAMELINK_COMPONENT ${development})
  install(EXPORT ${export} FILE ${file} NAMESPACE QEXCore::
    DESTINATION ${package_dir} COMPONENT ${development})
endfunction()

qexcore_install(library QEXCoreTargets QEXCoreTargets.cmake ${installed})
if(TARGET QEXCore_gtk)
  qexcore_install(gtk QEXCoreGtkTargets QEXCoreGtkTargets.cmake QEXCore_gtk)
  install(DIRECTORY include/QEXCore_gtk
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT gtk_development)
endif()
install(DIRECTORY include/QEXCore_iOS
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

configure_package_config_file(cmake/QEXCoreConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/QEXCoreConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/QEXCoreConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/QEXCoreConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/QEXCoreConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# Relative to where they lie, so that a moved installation still works.
file(RELATIVE_PATH QEXCORE_PC_TO_INCLUDE
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_FULL_INCLUDEDIR})
# qexcore_install_pkg_config(<name> <component>)
function(qexcore_install_pkg_config name component)
  configure_file(cmake/${name}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${component})
endfunction()

qexcore_install_pkg_config(qexcore development)
if(NOT VELMORA_CORE_ROOT)
  qexcore_install_pkg_config(velmoracore development)
endif()
if(TARGET QEXCore_gtk)
  qexcore_install_pkg_config(qexcore-gtk gtk_development)
endif()
