# Adds to each package, before it is closed, what Debian asks of all of them: copyright, changelog, compressed manual
# pages; and the first programs to what is for developers. CPack runs this where the components lie unpacked.
find_program(GZIP gzip REQUIRED)

function(compress file)
  execute_process(COMMAND ${GZIP} -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The day of the build, or of SOURCE_DATE_EPOCH.
set(ENV{LC_ALL} C)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(changelog "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Packages as CPack makes them; what is new is in the project's CHANGELOG.md.

 -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${date}
")

file(READ ${CPACK_RESOURCE_FILE_LICENSE} license)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} key)
  set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX})
  set(documents ${root}/share/doc/${CPACK_DEBIAN_${key}_PACKAGE_NAME})
  file(WRITE ${documents}/copyright "DatabaseService\n\n${license}")
  file(WRITE ${documents}/changelog.Debian "${changelog}")
  compress(${documents}/changelog.Debian)
  if(component STREQUAL "dev")
    file(COPY ${CMAKE_CURRENT_LIST_DIR}/../../examples DESTINATION ${documents})
  endif()
  file(GLOB pages ${root}/share/man/man*/*.[1-9])
  foreach(page IN LISTS pages)
    compress(${page})
  endforeach()
endforeach()
