# Sets the compile options of everything in this repository. Must be included before the first target is defined.

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

# The dynamic linker fills its tables at the start; they are read-only from then on.
set(link_read_only LINKER:-z,relro,-z,now)

if(QUILLON9_HARDENED)
  include(CheckCXXCompilerFlag)
  include(CheckCXXSourceCompiles)
  add_compile_options(-Wformat -Werror=format-security -fstack-protector-strong)
  foreach(flag IN ITEMS -fstack-clash-protection -fcf-protection)  # not every architecture has both
    string(MAKE_C_IDENTIFIER "has${flag}" has_flag)
    check_cxx_compiler_flag(${flag} ${has_flag})
    if(${has_flag})
      add_compile_options(${flag})
    endif()
  endforeach()
  # If the compiler does not support the third level, libc warns and uses the second.
  set(CMAKE_REQUIRED_FLAGS "-O2 -Werror -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3")
  check_cxx_source_compiles("#include <cstdio>\nint main() {}" has_fortify_3)
  unset(CMAKE_REQUIRED_FLAGS)
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=$<IF:$<BOOL:${has_fortify_3}>,3,2>)
endif()
