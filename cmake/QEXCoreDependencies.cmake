# The borrowed libraries, each as one imported target named QEXDep::<name>.

find_package(PkgConfig REQUIRED)
find_package(OpenSSL 3.0 REQUIRED COMPONENTS Crypto SSL)
pkg_check_modules(CURL REQUIRED IMPORTED_TARGET libcurl>=7.87)
pkg_check_modules(SIMDJSON REQUIRED IMPORTED_TARGET simdjson)
pkg_check_modules(LIBPLIST REQUIRED IMPORTED_TARGET libplist-2.0)
pkg_check_modules(URIPARSER REQUIRED IMPORTED_TARGET liburiparser)
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0 gio-unix-2.0)
pkg_check_modules(SQLITE3 REQUIRED IMPORTED_TARGET sqlite3)
find_path(RAPIDJSON_INCLUDE_DIR rapidjson/prettywriter.h REQUIRED)

add_library(QEXDep::Crypto ALIAS OpenSSL::Crypto)
add_library(QEXDep::Ssl ALIAS OpenSSL::SSL)
add_library(QEXDep::Curl ALIAS PkgConfig::CURL)
add_library(QEXDep::Simdjson ALIAS PkgConfig::SIMDJSON)
add_library(QEXDep::Plist ALIAS PkgConfig::LIBPLIST)
add_library(QEXDep::Uriparser ALIAS PkgConfig::URIPARSER)
add_library(QEXDep::Gio ALIAS PkgConfig::GIO)
add_library(QEXDep::Sqlite ALIAS PkgConfig::SQLITE3)

add_library(QEXDepRapidjson INTERFACE)
target_include_directories(QEXDepRapidjson SYSTEM INTERFACE ${RAPIDJSON_INCLUDE_DIR})
add_library(QEXDep::Rapidjson ALIAS QEXDepRapidjson)
