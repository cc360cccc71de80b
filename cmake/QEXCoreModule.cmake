# qexcore_module(<name> SOURCES <file>... [DEPENDS <target>...] [BORROWS <target>...])
#
# One room of the house: a static library QEXCore_<name> that tests link on its own and whose
# objects go into libQEXCore_iOS.so. DEPENDS names modules that it builds on (by their short names)
# or other targets; BORROWS names third-party targets, which stay private to it.
function(qexcore_module name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;DEPENDS;BORROWS")
  set(target QEXCore_${name})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC
    ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/core/include)
  target_link_libraries(${target} PRIVATE QEXCoreBuildFlags ${ARG_BORROWS})
  foreach(dependency IN LISTS ARG_DEPENDS)
    if(TARGET QEXCore_${dependency})
      target_link_libraries(${target} PUBLIC QEXCore_${dependency})
    elseif(TARGET ${dependency})
      target_link_libraries(${target} PUBLIC ${dependency})
    else()
      message(FATAL_ERROR "${target} depends on '${dependency}', which is no target")
    endif()
  endforeach()
  qexcore_precompile(${target})
  set_property(GLOBAL APPEND PROPERTY QEXCORE_MODULES ${target})
  set_property(GLOBAL APPEND PROPERTY QEXCORE_BORROWED ${ARG_BORROWS})
endfunction()

# qexcore_offer(<name> <short name>)
#
# Makes the shared library <name> of this folder what others link as QEXCore::<short name>: with the
# public headers, a version, and the exports that exports.map beside its CMakeLists.txt allows.
function(qexcore_offer name short_name)
  add_library(QEXCore::${short_name} ALIAS ${name})
  # Standard-library templates come out with default visibility; the script keeps the exports to
  # what is offered.
  set(exports ${CMAKE_CURRENT_SOURCE_DIR}/exports.map)
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} LINKER_LANGUAGE CXX
    EXPORT_NAME ${short_name}
    # The libraries that it needs lie beside it.
    INSTALL_RPATH "$ORIGIN"
    LINK_DEPENDS ${exports})
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:QEXCoreBuildFlags>)
  target_link_options(${name} PRIVATE LINKER:--version-script=${exports})
  if(NOT QEXCORE_SANITIZERS)  # clang puts their runtime into the programs
    target_link_options(${name} PRIVATE LINKER:--no-undefined)
  endif()
endfunction()

# Lets a target use the standard headers that are precompiled once for all, where that was chosen.
function(qexcore_precompile target)
  if(QEXCORE_PRECOMPILED_HEADERS)
    target_precompile_headers(${target} REUSE_FROM QEXCorePrecompiled)
  endif()
endfunction()

if(QEXCORE_PRECOMPILED_HEADERS)
  set(precompiled_source ${CMAKE_CURRENT_BINARY_DIR}/QEXCorePrecompiled.cpp)
  file(CONFIGURE OUTPUT ${precompiled_source} CONTENT "namespace {}\n")
  add_library(QEXCorePrecompiled OBJECT ${precompiled_source})
  target_link_libraries(QEXCorePrecompiled PRIVATE QEXCoreBuildFlags)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # ccache sees through a precompiled header only with this.
    target_compile_options(QEXCoreBuildFlags INTERFACE -fpch-preprocess)
  else()
    # An upgraded system header may be older than what was built from its predecessor, so that the
    # build would not renew it and clang would refuse it.
    target_compile_options(QEXCoreBuildFlags INTERFACE "SHELL:-Xclang -fno-pch-timestamp")
  endif()
  target_precompile_headers(QEXCorePrecompiled PRIVATE
    <chrono> <functional> <map> <memory> <mutex> <optional> <string> <string_view> <variant>
    <vector>)
endif()

# qexcore_test(<name> SOURCES <file>... [LINK <target>...] [LABELS <label>...] [TIMEOUT <seconds>])
#
# A GoogleTest program, registered with CTest as one test.
function(qexcore_test name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "TIMEOUT" "SOURCES;LINK;LABELS")
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  qexcore_test_program(${name} SOURCES ${ARG_SOURCES} LINK ${ARG_LINK})
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()

# qexcore_test_program(<name> SOURCES <file>... [LINK <target>...])
#
# A GoogleTest program. It sees src/, core/src/ and tests/ as include folders.
function(qexcore_test_program name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LINK")
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE
    ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/core/include
    ${PROJECT_SOURCE_DIR}/core/src ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LINK} QEXCoreBuildFlags GTest::gmock_main)
  # As the precompiled headers are, which a program's -fPIE would not fit.
  target_compile_options(${name} PRIVATE -fPIC)
  qexcore_precompile(${name})
endfunction()
