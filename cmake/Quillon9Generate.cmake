# quillon9_generate(TARGET target SCHEMAS schema... [NAMESPACE name] [OUTPUT folder] [OPTIONS option...])
#
# Generates C++ classes from XML Schemas while building, and adds them to the target, which must have been created in
# the same folder: their sources, the folder of their header to its include path, and the library Quillon9::quillon9.
# They are generated again when a schema, one that it includes or imports, or the program quillon9 has changed.
#
#   SCHEMAS    relative to the current source folder
#   NAMESPACE  of the classes, such as Orders or Company::Orders. The header is named after its last part in lower case:
#              #include "orders.h". Default: from the name of the first schema; purchase_order.xsd gives PurchaseOrder.
#   OUTPUT     folder for the files, relative to the current binary folder. Default: <target>_generated.
#   OPTIONS    of `quillon9 generate`. Relative paths of catalogs and include paths start at the current source folder.
#              With --split, which files there are depends on the schemas; the installed program lists them when CMake
#              configures the project, which it does again when a schema changes.

# The functions of this file follow the rules of this version, whatever the project asks for.
cmake_policy(PUSH)
cmake_policy(VERSION 3.25)

# The namespace that `quillon9 generate` takes for a schema by default.
function(_quillon9_namespace schema result)
  cmake_path(GET schema STEM LAST_ONLY stem)
  string(REGEX MATCHALL "[A-Za-z0-9]+" words "${stem}")
  set(namespace "")
  foreach(word IN LISTS words)
    string(SUBSTRING ${word} 0 1 first)
    string(SUBSTRING ${word} 1 -1 rest)
    string(TOUPPER ${first} first)
    string(APPEND namespace ${first}${rest})
  endforeach()
  if(namespace STREQUAL "" OR stem MATCHES "[^ -~]")
    message(FATAL_ERROR "quillon9_generate: give a NAMESPACE, since none can be made from ${schema}")
  endif()
  if(namespace MATCHES "^[0-9]")
    string(PREPEND namespace N)
  endif()
  set(${result} ${namespace} PARENT_SCOPE)
endfunction()

# The options with absolute paths, since the rule that the program writes is not read where the program runs.
function(_quillon9_absolute_options result)
  set(options "")
  set(is_path FALSE)
  foreach(option IN LISTS ARGN)
    set(prefix "")
    if(option MATCHES "^(--catalog=|--include-path=|-c|-I)(.+)$")
      set(prefix ${CMAKE_MATCH_1})
      set(option ${CMAKE_MATCH_2})
      set(is_path TRUE)
    endif()
    if(is_path)
      cmake_path(ABSOLUTE_PATH option BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
    endif()
    list(APPEND options ${prefix}${option})
    set(is_path FALSE)
    if(prefix STREQUAL "" AND option MATCHES "^(--catalog|--include-path|-c|-I)$")
      set(is_path TRUE)
    endif()
  endforeach()
  set(${result} "${options}" PARENT_SCOPE)
endfunction()

# The files that the program will write with these arguments, and those that it reads. The project is configured again
# when one of these changes.
function(_quillon9_files rule outputs_result inputs_result)
  get_target_property(is_installed Quillon9::program IMPORTED)
  if(NOT is_installed)
    message(FATAL_ERROR "quillon9_generate: --split needs the installed program quillon9, because the names of its files "
      "must be known before anything is built")
  endif()
  get_target_property(program Quillon9::program LOCATION)
  execute_process(COMMAND ${program} generate --list-outputs --dependency-file=${rule} ${ARGN}
    OUTPUT_VARIABLE names ERROR_VARIABLE messages RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "quillon9_generate:\n${messages}")
  endif()
  string(STRIP "${names}" names)
  string(REPLACE "\n" ";" names "${names}")
  set(${outputs_result} "${names}" PARENT_SCOPE)

  file(STRINGS ${rule} inputs REGEX "^[^ ].*:$")  # an empty rule for each schema and catalog
  list(TRANSFORM inputs REPLACE ":$" "")
  list(TRANSFORM inputs REPLACE "\\\\([ #])" "\\1")
  list(TRANSFORM inputs REPLACE "[$][$]" "$")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${inputs} ${program})
  set(${inputs_result} "${inputs}" PARENT_SCOPE)
endfunction()

function(quillon9_generate)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "TARGET;NAMESPACE;OUTPUT" "SCHEMAS;OPTIONS")
  if(NOT arg_TARGET OR NOT arg_SCHEMAS OR arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "usage: quillon9_generate(TARGET target SCHEMAS schema... [NAMESPACE name] [OUTPUT folder] "
      "[OPTIONS option...])")
  endif()
  if(NOT TARGET Quillon9::program)
    message(FATAL_ERROR "quillon9_generate: the program quillon9 is missing (Debian: package quillon9-tools)")
  endif()
  get_target_property(target_dir ${arg_TARGET} SOURCE_DIR)
  if(NOT target_dir STREQUAL CMAKE_CURRENT_SOURCE_DIR)
    message(FATAL_ERROR "quillon9_generate: call it in ${target_dir}, where ${arg_TARGET} is created")
  endif()

  set(schemas "")
  foreach(schema IN LISTS arg_SCHEMAS)
    cmake_path(ABSOLUTE_PATH schema BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
    list(APPEND schemas ${schema})
  endforeach()
  if(NOT arg_NAMESPACE)
    list(GET schemas 0 first_schema)
    _quillon9_namespace(${first_schema} arg_NAMESPACE)
  endif()
  if(NOT arg_OUTPUT)
    set(arg_OUTPUT ${arg_TARGET}_generated)
  endif()
  cmake_path(ABSOLUTE_PATH arg_OUTPUT BASE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} NORMALIZE)
  _quillon9_absolute_options(options ${arg_OPTIONS})

  string(REGEX REPLACE "^.*::" "" stem ${arg_NAMESPACE})
  string(TOLOWER ${stem} stem)
  set(files ${arg_OUTPUT}/${stem}.h ${arg_OUTPUT}/${stem}.cpp)
  # The program does not touch files that stay the same, so another file says when it has run.
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${arg_TARGET}_${stem}.stamp)
  set(rule ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${arg_TARGET}_${stem}.d)
  set(inputs ${schemas})
  set(arguments --namespace=${arg_NAMESPACE} --output=${arg_OUTPUT} ${options})
  if(options MATCHES "(^|;)--split(=|;|$)")
    _quillon9_files(${rule}.configure files inputs ${arguments} -- ${schemas})
  endif()
  add_custom_command(OUTPUT ${stamp} BYPRODUCTS ${files} DEPFILE ${rule}
    COMMAND Quillon9::program generate ${arguments} --dependency-file=${rule} --dependency-target=${stamp} -- ${schemas}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${inputs} $<TARGET_FILE:Quillon9::program>
    COMMENT "Generating classes ${arg_NAMESPACE}" VERBATIM)

  set(scope PUBLIC)
  get_target_property(type ${arg_TARGET} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(scope PRIVATE)
  endif()
  target_sources(${arg_TARGET} PRIVATE ${files} ${stamp})
  target_include_directories(${arg_TARGET} ${scope} $<BUILD_INTERFACE:${arg_OUTPUT}>)
  target_link_libraries(${arg_TARGET} ${scope} Quillon9::quillon9)
endfunction()

cmake_policy(POP)
