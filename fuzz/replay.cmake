# One plain program per *_fuzzer.cpp: NAME_replay runs the seeds and all past findings, in every test run and with any
# compiler.

include(${CMAKE_CURRENT_LIST_DIR}/targets.cmake)
foreach(source IN LISTS fuzzer_sources)
  cmake_path(GET source STEM fuzzer)
  string(REGEX REPLACE "_fuzzer$" "" name ${fuzzer})
  quillon9_add_fuzz_program(${name}_replay ${name} ${source} ${CMAKE_CURRENT_LIST_DIR}/replay_main.cpp)
  add_test(NAME ${name}_replay COMMAND ${name}_replay
    ${CMAKE_CURRENT_LIST_DIR}/seeds/${name} ${PROJECT_SOURCE_DIR}/tests/regression/${name})
  set_tests_properties(${name}_replay PROPERTIES TIMEOUT 120)
endforeach()

# The random searches. They need no fuzzer, and try a few cases in every test run.
foreach(topic IN ITEMS reading checking pattern)
  add_executable(${topic}_random ${CMAKE_CURRENT_LIST_DIR}/${topic}_random.cpp ${${topic}_sources})
  target_include_directories(${topic}_random PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  target_link_libraries(${topic}_random PRIVATE quillon9_internal)
  add_test(NAME ${topic}_random COMMAND ${topic}_random)
  set_tests_properties(${topic}_random PROPERTIES TIMEOUT 600)
endforeach()
