# How everything in this repository is compiled. Included before the first target is made.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(PROJECT_IS_TOP_LEVEL)
  add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
endif()
if(QUILLON9_WERROR)
  add_compile_options(-Werror)
endif()

if(QUILLON9_SANITIZE)
  add_compile_options(-fsanitize=${QUILLON9_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  string(REPLACE "fuzzer-no-link," "" link_sanitizers "${QUILLON9_SANITIZE}")
  add_link_options(-fsanitize=${link_sanitizers})
endif()
