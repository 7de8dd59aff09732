# cpack runs this between the installation into the packages' folders and the making of the packages: it adds the
# changelogs and the copyright, and compresses what Debian keeps compressed.

function(compress file)
  execute_process(COMMAND gzip -9 -n -f ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(write_changelogs folder)
  configure_file(${CPACK_SOURCE_DIR}/CHANGELOG.md ${folder}/changelog COPYONLY)
  configure_file(${CPACK_SOURCE_DIR}/packaging/debian/changelog ${folder}/changelog.Debian COPYONLY)
  compress(${folder}/changelog)
  compress(${folder}/changelog.Debian)
endfunction()

# The minimum that the build asks for, where dpkg-shlibdeps would take the release that first had the functions in use.
file(WRITE ${CPACK_TEMPORARY_DIRECTORY}/runtime/debian/shlibs.local
  "libexpat 1 libexpat1 (>= ${CPACK_QUILLON9_EXPAT_MINIMUM})\n")

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})
  set(folder ${root}/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  file(MAKE_DIRECTORY ${folder})
  configure_file(${CPACK_SOURCE_DIR}/packaging/debian/copyright ${folder}/copyright COPYONLY)
  write_changelogs(${folder})
  file(GLOB manuals ${root}/share/man/man*/*.[1-9])
  foreach(manual IN LISTS manuals)
    compress(${manual})
  endforeach()
endforeach()
