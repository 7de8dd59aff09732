# Selects the generation of PCRE according to QUILLON9_PCRE. AUTO prefers the second, because the first has no
# maintainers any more. Sets pcre_generation, pcre_target (the target to link), and pcre_other_source, the source in
# src/values for the generation that is not used.

if(NOT QUILLON9_PCRE MATCHES "^(AUTO|1|2)$")
  message(FATAL_ERROR "QUILLON9_PCRE is AUTO, 1 or 2, not ${QUILLON9_PCRE}")
endif()

set(pcre_generation ${QUILLON9_PCRE})
if(QUILLON9_PCRE STREQUAL "AUTO")
  find_package(PCRE2 ${pcre2_minimum} QUIET)
  if(NOT PCRE2_FOUND)
    find_package(PCRE QUIET)
  endif()
  if(PCRE_FOUND)
    set(pcre_generation 1)
  else()
    set(pcre_generation 2)
  endif()
endif()

if(pcre_generation EQUAL 1)
  find_package(PCRE REQUIRED)
  set(pcre_target PCRE::PCRE)
  set(pcre_other_source pattern_engine_pcre2.cpp)
else()
  find_package(PCRE2 ${pcre2_minimum} REQUIRED)
  set(pcre_target PCRE2::8BIT)
  set(pcre_other_source pattern_engine_pcre.cpp)
endif()
