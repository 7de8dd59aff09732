# Defines what `cmake --install` installs: the library, its headers, a CMake package and a pkg-config file. A program
# needs only these: expat, PCRE and zlib stay inside the library, if it is a shared one.
#
# The components become the packages: runtime, dev, tools (see tools/) and doc, which is installed only on request:
# cmake --install BUILD_DIR --component doc.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon9)

install(TARGETS quillon9 EXPORT quillon9-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
install(EXPORT quillon9-targets NAMESPACE Quillon9:: FILE Quillon9Targets.cmake DESTINATION ${package_dir}
  COMPONENT dev)

if(pcre_generation EQUAL 2)
  set(pcre_package PCRE2)
  set(pcre_package_minimum ${pcre2_minimum})
  set(pc_requires "Requires: expat >= ${expat_minimum}, zlib, libpcre2-8 >= ${pcre2_minimum}")
else()
  set(pcre_package PCRE)
  set(pcre_package_minimum "")
  set(pc_requires "Requires: expat >= ${expat_minimum}, zlib, libpcre")
endif()
set(pc_threads " -pthread")
if(BUILD_SHARED_LIBS)
  set(pc_requires "")
  set(pc_threads "")
else()
  install(FILES cmake/Find${pcre_package}.cmake DESTINATION ${package_dir} COMPONENT dev)
endif()
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
  set(program_from_package ${CMAKE_INSTALL_FULL_BINDIR}/quillon9)
else()
  file(RELATIVE_PATH package_to_bin /${package_dir} /${CMAKE_INSTALL_BINDIR})
  set(program_from_package "\${CMAKE_CURRENT_LIST_DIR}/${package_to_bin}/quillon9")
endif()
configure_file(cmake/Quillon9Config.cmake.in Quillon9Config.cmake @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/Quillon9Config.cmake cmake/Quillon9Generate.cmake DESTINATION ${package_dir} COMPONENT dev)

write_basic_package_version_file(${PROJECT_BINARY_DIR}/Quillon9ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/Quillon9ConfigVersion.cmake DESTINATION ${package_dir} COMPONENT dev)

# The pkg-config file locates the rest of the tree relative to itself, so an installed tree may be moved as a whole.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(pc_prefix ${CMAKE_INSTALL_PREFIX})
  set(pc_libdir ${CMAKE_INSTALL_FULL_LIBDIR})
  set(pc_includedir ${CMAKE_INSTALL_FULL_INCLUDEDIR})
else()
  file(RELATIVE_PATH way_up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" way_up "${way_up}")
  set(pc_prefix "\${pcfiledir}/${way_up}")
  set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/quillon9.pc.in ${PROJECT_BINARY_DIR}/quillon9.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quillon9.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# The pages, the site if `make docs` has built it, and the examples, which can be built on their own where they are.
set(doc_component COMPONENT doc EXCLUDE_FROM_ALL)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} ${doc_component})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} ${doc_component} FILES_MATCHING
  PATTERN "*.md" PATTERN "*.svg")
install(DIRECTORY build/docs/html DESTINATION ${CMAKE_INSTALL_DOCDIR} ${doc_component} OPTIONAL)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} ${doc_component})
install(FILES cmake/RunExample.cmake DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples/cmake ${doc_component})
