# cpack runs this over the packages that it has made. It writes Multi-Arch, for which cpack before 3.31 has no variable,
# and leaves out the scripts that it makes to call ldconfig: a trigger does that without running anything of ours.

function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(package IN LISTS CPACK_PACKAGE_FILES)
  string(REGEX REPLACE "^.*/([^/_]+)_[^/]*$" "\\1" name ${package})
  set(folder ${CPACK_TEMPORARY_DIRECTORY}/mended/${name})
  file(REMOVE_RECURSE ${folder})
  file(MAKE_DIRECTORY ${CPACK_TEMPORARY_DIRECTORY}/mended)
  run(dpkg-deb --raw-extract ${package} ${folder})
  file(READ ${folder}/DEBIAN/control control)
  file(WRITE ${folder}/DEBIAN/control "Multi-Arch: ${CPACK_QUILLON9_MULTI_ARCH_${name}}\n${control}")
  if(EXISTS ${folder}/DEBIAN/shlibs)
    file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
    file(WRITE ${folder}/DEBIAN/triggers "activate-noawait ldconfig\n")
  endif()
  run(dpkg-deb --root-owner-group --build ${folder} ${package})
endforeach()
