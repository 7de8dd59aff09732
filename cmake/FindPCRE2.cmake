# Finds PCRE2 for 8-bit text, called libpcre2-8 in pkg-config. Defines the target PCRE2::8BIT.

find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
  pkg_check_modules(PCRE2 QUIET IMPORTED_TARGET libpcre2-8)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PCRE2 REQUIRED_VARS PCRE2_LINK_LIBRARIES VERSION_VAR PCRE2_VERSION)

if(PCRE2_FOUND AND NOT TARGET PCRE2::8BIT)
  add_library(PCRE2::8BIT INTERFACE IMPORTED)
  target_link_libraries(PCRE2::8BIT INTERFACE PkgConfig::PCRE2)
endif()
