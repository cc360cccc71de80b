# What can be chosen, and the flags that every target of ours is built with.

option(QEXCORE_BUILD_TESTS "Build the test suites" ${PROJECT_IS_TOP_LEVEL})
option(QEXCORE_BUILD_EXAMPLES "Build the example apps" ${PROJECT_IS_TOP_LEVEL})
option(QEXCORE_BUILD_BENCHMARKS "Build the benchmarks" OFF)
option(QEXCORE_BUILD_FUZZERS "Build the fuzz targets (needs clang)" OFF)
option(QEXCORE_BUILD_GTK "Build the screen on GTK 4, where it is installed" ON)
option(QEXCORE_INSTALL "Make the install rules" ${PROJECT_IS_TOP_LEVEL})
option(QEXCORE_WARNINGS_AS_ERRORS "Treat warnings as errors" ${PROJECT_IS_TOP_LEVEL})
option(QEXCORE_PRECOMPILED_HEADERS "Precompile the standard headers that most sources include" OFF)
option(QEXCORE_CCACHE "Use ccache when it is installed" ${PROJECT_IS_TOP_LEVEL})
option(QEXCORE_COVERAGE "Measure test coverage" OFF)
set(QEXCORE_SANITIZERS "" CACHE STRING "Sanitizers, separated by commas: address,undefined or thread")
set(VELMORA_CORE_ROOT "" CACHE PATH
  "Install prefix of a VelmoraCore library to use in place of the development core")

# One flag set for all that includes simdjson: its class layout depends on -pthread.
set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)

# Carries the language level and the warnings; every target of ours links it privately.
add_library(QEXCoreBuildFlags INTERFACE)
target_compile_features(QEXCoreBuildFlags INTERFACE cxx_std_20)
target_compile_options(QEXCoreBuildFlags INTERFACE
  -pthread
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${QEXCORE_WARNINGS_AS_ERRORS}>:-Werror>)
target_link_libraries(QEXCoreBuildFlags INTERFACE Threads::Threads)

if(QEXCORE_SANITIZERS)
  target_compile_options(QEXCoreBuildFlags INTERFACE
    -fsanitize=${QEXCORE_SANITIZERS} -fno-omit-frame-pointer)
  target_link_options(QEXCoreBuildFlags INTERFACE -fsanitize=${QEXCORE_SANITIZERS})
  if(QEXCORE_SANITIZERS MATCHES "undefined")
    target_compile_options(QEXCoreBuildFlags INTERFACE -fno-sanitize-recover=undefined)
  endif()
endif()

if(QEXCORE_BUILD_FUZZERS)
  target_compile_options(QEXCoreBuildFlags INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(QEXCORE_COVERAGE)
  target_compile_options(QEXCoreBuildFlags INTERFACE --coverage -O0)
  target_link_options(QEXCoreBuildFlags INTERFACE --coverage)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(QEXCORE_CCACHE)
  find_program(QEXCORE_CCACHE_PROGRAM ccache)
  if(QEXCORE_CCACHE_PROGRAM)
    # With precompiled headers ccache needs to be told that time stamps do not matter. Paths count
    # from the sources, so that two checkouts share their objects.
    set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      ${QEXCORE_CCACHE_PROGRAM})
  endif()
endif()
