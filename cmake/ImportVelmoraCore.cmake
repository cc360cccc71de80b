# Takes a VelmoraCore library from VELMORA_CORE_ROOT in place of the development core: headers in
# include/VelmoraCore, the library in lib.

find_path(VELMORA_CORE_INCLUDE_DIR VelmoraCore/Core.h
  PATHS ${VELMORA_CORE_ROOT}/include NO_DEFAULT_PATH REQUIRED)
find_library(VELMORA_CORE_LIBRARY VelmoraCore
  PATHS ${VELMORA_CORE_ROOT}/lib ${VELMORA_CORE_ROOT}/${CMAKE_INSTALL_LIBDIR}
  NO_DEFAULT_PATH REQUIRED)

add_library(VelmoraCore SHARED IMPORTED GLOBAL)
set_target_properties(VelmoraCore PROPERTIES
  IMPORTED_LOCATION ${VELMORA_CORE_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${VELMORA_CORE_INCLUDE_DIR})
add_library(VelmoraCoreBase ALIAS VelmoraCore)
add_library(VelmoraCoreHub ALIAS VelmoraCore)
