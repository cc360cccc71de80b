# Debian packages of what is installed: `cpack` in the build folder, or `make package`.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qexcore)
set(CPACK_PACKAGE_CONTACT "The QEXCore maintainers <maintainers@qexcore.example>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL library development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

set(soversion ${PROJECT_VERSION_MAJOR})
set(this_version "(= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libqexcore${soversion})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "${PROJECT_DESCRIPTION}: libraries")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqexcore-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libqexcore${soversion} ${this_version}")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION}: headers")

# Where dpkg-shlibdeps finds those of our libraries that others of ours need.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR}/core ${PROJECT_BINARY_DIR}/src)

if(TARGET QEXCore_gtk)
  list(APPEND CPACK_COMPONENTS_ALL gtk gtk_development)
  set(CPACK_DEBIAN_GTK_PACKAGE_NAME libqexcore-gtk${soversion})
  set(CPACK_DEBIAN_GTK_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_GTK_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_GTK_PACKAGE_DEPENDS "libqexcore${soversion} ${this_version}")
  set(CPACK_COMPONENT_GTK_DESCRIPTION "${PROJECT_DESCRIPTION}: the screen on GTK 4")

  set(CPACK_DEBIAN_GTK_DEVELOPMENT_PACKAGE_NAME libqexcore-gtk-dev)
  set(CPACK_DEBIAN_GTK_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_GTK_DEVELOPMENT_PACKAGE_DEPENDS
    "libqexcore-dev ${this_version}, libqexcore-gtk${soversion} ${this_version}")
  set(CPACK_COMPONENT_GTK_DEVELOPMENT_DESCRIPTION
    "${PROJECT_DESCRIPTION}: building with the screen on GTK 4")
endif()

include(CPack)
