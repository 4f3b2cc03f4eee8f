# A shared library lets out what lies in our own namespaces and is marked for export, and nothing else: templates of the
# standard library that it instantiates stay inside, whatever their headers say. Linux only, where the linker can.
include(CheckLinkerFlag)

set(exports_map ${CMAKE_CURRENT_LIST_DIR}/exports.map)
if(BUILD_SHARED_LIBS AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
  check_linker_flag(CXX LINKER:--version-script=${exports_map} DATABASESERVICE_HAS_VERSION_SCRIPTS)
endif()

function(limit_exports library)
  if(DATABASESERVICE_HAS_VERSION_SCRIPTS)
    target_link_options(${library} PRIVATE LINKER:--version-script=${exports_map})
    set_property(TARGET ${library} APPEND PROPERTY LINK_DEPENDS ${exports_map})
  endif()
endfunction()
