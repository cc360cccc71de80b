# Install rules: libraries, headers, a CMake package with the component `core`, pkg-config files.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QEXCore)
set(installed QEXCore_iOS)
if(NOT VELMORA_CORE_ROOT)
  list(APPEND installed VelmoraCore)
  install(DIRECTORY core/include/VelmoraCore DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
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
foreach(name qexcore velmoracore)
  configure_file(cmake/${name}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc @ONLY)
endforeach()
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/qexcore.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(NOT VELMORA_CORE_ROOT)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/velmoracore.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
