# What the fuzz targets are made of, for libFuzzer and for replaying.

file(GLOB fuzzer_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*_fuzzer.cpp)

# The sources that the reading fuzzer and the random search share: the classes of a case, and the model that reads
# alongside the library.
set(reading_sources
  ${CMAKE_CURRENT_LIST_DIR}/reading_case.cpp
  ${CMAKE_CURRENT_LIST_DIR}/reading_classes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/reading_model.cpp
  ${CMAKE_CURRENT_LIST_DIR}/reading_schema.cpp)

# Add a program of a target's source and of further sources. The generator stands on the shared library; the other
# targets reach what is internal.
function(quillon9_add_fuzz_program program topic source)
  add_executable(${program} ${source} ${${topic}_sources} ${ARGN})
  target_include_directories(${program} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  if(topic STREQUAL "schema")
    target_link_libraries(${program} PRIVATE quillon9_generator)
  else()
    target_link_libraries(${program} PRIVATE quillon9_internal)
  endif()
endfunction()
