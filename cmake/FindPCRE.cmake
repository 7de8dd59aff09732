# Finds PCRE 8, called libpcre in pkg-config. Defines the target PCRE::PCRE.

find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
  pkg_check_modules(PCRE QUIET IMPORTED_TARGET libpcre)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PCRE REQUIRED_VARS PCRE_LINK_LIBRARIES VERSION_VAR PCRE_VERSION)

if(PCRE_FOUND AND NOT TARGET PCRE::PCRE)
  add_library(PCRE::PCRE INTERFACE IMPORTED)
  target_link_libraries(PCRE::PCRE INTERFACE PkgConfig::PCRE)
endif()
