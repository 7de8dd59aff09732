# Defines the Debian packages that `make packages` builds with cpack, one for each component of the installation.
# packaging/debian/complete.cmake adds what Debian requires in them in addition to the files of `cmake --install`;
# mend.cmake next to it makes the changes that cpack cannot express.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quillon9)
set(CPACK_PACKAGE_VENDOR "The Quillon9 authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGE_CONTACT "The Quillon9 authors <quillon9@example.org>" CACHE STRING "Maintainer of the packages")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/deb)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL runtime dev tools doc)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/complete.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/mend.cmake)
set(CPACK_SOURCE_DIR ${PROJECT_SOURCE_DIR})

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE quillon9)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)

# The remaining arguments are the lines of the description; the first is the short description.
macro(quillon9_package component name section multi_arch)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_QUILLON9_MULTI_ARCH_${name} ${multi_arch})
  string(REPLACE ";" "\n" CPACK_DEBIAN_${upper}_DESCRIPTION "${ARGN}")
endmacro()

set(about
  "Quillon9 is the run-time library of an XML data binder. Classes that describe"
  "themselves in tables become readable and writable: documents are read into"
  "objects, held to the rules of their schema, and written back, as XML text or"
  "Fast Infoset, as they are or compressed."
  ".")

# The package name has the same number as the library name, so that two major versions can be installed together.
quillon9_package(runtime libquillon9-${PROJECT_VERSION_MAJOR} libs same
  "run-time library of an XML data binder" ${about}
  "This package holds the shared library.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_QUILLON9_EXPAT_MINIMUM ${expat_minimum})

# Depends on no other library: the public headers hide expat, zlib and the pattern engine.
quillon9_package(dev libquillon9-dev libdevel same
  "run-time library of an XML data binder (development files)" ${about}
  "This package holds what building a program needs: the headers, the CMake"
  "package and the pkg-config file.")
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS quillon9-tools)  # for quillon9_generate()
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS libquillon9-doc)

quillon9_package(tools quillon9-tools text foreign
  "generate classes from XML Schema; convert and show documents" ${about}
  "This package holds the program quillon9, which generates C++ classes from XML"
  "Schemas, converts documents between XML text and Fast Infoset, and shows what"
  "is in them.")
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

quillon9_package(doc libquillon9-doc doc foreign
  "run-time library of an XML data binder (documentation)" ${about}
  "This package holds the documentation, and examples with their sources.")
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOC_PACKAGE_RECOMMENDS libquillon9-dev)

include(CPack)
