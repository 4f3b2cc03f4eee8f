# What `cpack` makes of a build: Debian packages, one for each component that the build has, and a zip for Windows.
#
#   runtime        the shared libraries
#   dev            headers and package files, to build against them
#   tool           dbservice, with its manual page and its completions
#   sqlite-module  the order of names as a module that SQLite loads
#
# The preset `package` builds what `make package` wants of it.
set(DATABASESERVICE_MAINTAINER "DatabaseService developers <databaseservice@example.org>" CACHE STRING
  "Who answers for the Debian packages")

set(CPACK_PACKAGE_NAME databaseservice)
set(CPACK_PACKAGE_VENDOR "DatabaseService developers")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Each package has its own.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)

if(WIN32)
  if(MINGW)
    # Who can use what.
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/package/README-Windows.txt DESTINATION . COMPONENT runtime
      RENAME README.txt)
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION . COMPONENT runtime RENAME LICENSE.txt)
  endif()
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME databaseservice-${PROJECT_VERSION}-windows-x64)
  include(CPack)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/package/AddDebianDocuments.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/package/UseLdconfigTrigger.cmake)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

get_cmake_property(components COMPONENTS)
set(CPACK_COMPONENTS_ALL)
foreach(component IN ITEMS runtime dev tool sqlite-module)
  if(component IN_LIST components)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
  endif()
endforeach()
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${DATABASESERVICE_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

# Declares one package. The description's first line is its synopsis.
function(debian_package component name section description)
  string(TOUPPER ${component} key)
  foreach(setting IN ITEMS
      "CPACK_DEBIAN_${key}_PACKAGE_NAME=${name}"
      "CPACK_DEBIAN_${key}_PACKAGE_SECTION=${section}"
      "CPACK_COMPONENT_${key}_DESCRIPTION=${description}")
    string(FIND "${setting}" "=" end)
    string(SUBSTRING "${setting}" 0 ${end} variable)
    math(EXPR begin "${end} + 1")
    string(SUBSTRING "${setting}" ${begin} -1 value)
    set(${variable} "${value}" PARENT_SCOPE)
  endforeach()
endfunction()

set(about "DatabaseService keeps what the desktop client of a cloud drive and photo
gallery must remember between two starts: the drive's file tree, what waits
to be carried to the cloud, the gallery, settings, shortcuts and transfers.")
set(soversion ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})

debian_package(runtime libdatabaseservice${soversion} libs "local stores of a cloud drive client - shared libraries
${about}

This package holds the shared libraries.")

debian_package(dev libdatabaseservice-dev libdevel "local stores of a cloud drive client - development files
${about}

This package holds the headers, the files behind find_package of CMake, and a
first program for each store.")
set(CPACK_COMPONENT_DEV_DEPENDS runtime)

debian_package(tool dbservice utils "local stores of a cloud drive client - command-line tool
${about}

This package holds dbservice, which looks into the stores, checks and changes
them, and fills them from real folders.")
set(CPACK_COMPONENT_TOOL_DEPENDS runtime)

debian_package(sqlite-module libsqlite3-mod-namecompare libs "local stores of a cloud drive client - SQLite module
${about}

This package holds a module that SQLite's shell and other programs load to
know the collation NameCompare, by which the stores sort their names.")

include(CPack)
