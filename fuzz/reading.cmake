# The sources that the reading fuzzer and the random search share: the classes of a case, and the model that reads
# alongside the library.

set(reading_sources
  ${CMAKE_CURRENT_LIST_DIR}/reading_case.cpp
  ${CMAKE_CURRENT_LIST_DIR}/reading_classes.cpp
  ${CMAKE_CURRENT_LIST_DIR}/reading_model.cpp
  ${CMAKE_CURRENT_LIST_DIR}/reading_schema.cpp)
