# The two switches for the mechanisms of src/base/fast_paths.h. A target that sees the internal headers gets them by
# quillon9_fast_paths().

option(QUILLON9_CHECK_CACHES "Compare each remembered answer with the computed one, and abort if they differ" OFF)
set(QUILLON9_WITHOUT "" CACHE STRING "Mechanisms of src/base/fast_paths.h to build without, a list; ALL for all")

file(STRINGS src/base/fast_paths.h fast_paths REGEX "^inline constexpr FastPath k")
list(TRANSFORM fast_paths REPLACE "^.*\"(.*)\".*$" "\\1")
if(QUILLON9_WITHOUT STREQUAL "ALL")
  set(fast_paths_off ${fast_paths})
else()
  set(fast_paths_off ${QUILLON9_WITHOUT})
endif()
foreach(name IN LISTS fast_paths_off)
  if(NOT name IN_LIST fast_paths)
    message(FATAL_ERROR "QUILLON9_WITHOUT: there is no mechanism ${name}; the names are ${fast_paths}")
  endif()
endforeach()

function(quillon9_fast_paths target scope)
  if(QUILLON9_CHECK_CACHES)
    target_compile_definitions(${target} ${scope} QUILLON9_CHECK_CACHES)
  endif()
  if(fast_paths_off)
    list(JOIN fast_paths_off "," names)
    target_compile_definitions(${target} ${scope} "QUILLON9_WITHOUT=\",${names},\"")
  endif()
endfunction()
