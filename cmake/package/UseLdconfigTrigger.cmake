# Has packages of shared libraries ask dpkg for one run of ldconfig at its end, as Debian's own do, in place of the
# scripts that CPack gives them.
find_program(DPKG_DEB dpkg-deb REQUIRED)

foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(folder ${CPACK_TEMPORARY_DIRECTORY}/rebuilt)
  file(REMOVE_RECURSE ${folder})
  execute_process(COMMAND ${DPKG_DEB} --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS ${folder}/DEBIAN/shlibs)
    file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
    file(WRITE ${folder}/DEBIAN/triggers "activate-noawait ldconfig\n")
    execute_process(COMMAND ${DPKG_DEB} --root-owner-group -Zxz --build ${folder} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(REMOVE_RECURSE ${folder})
endforeach()
