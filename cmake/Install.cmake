# Installs what a client needs: libraries, public headers and the package files behind find_package.
# The tool installs itself.
#
# The headers that are listed here are the interface. Each has to compile by itself, which the target
# all_verify_interface_header_sets checks.
include(CMakePackageConfigHelpers)

set(header_folders ${PROJECT_SOURCE_DIR}/infrastructure ${PROJECT_BINARY_DIR}/include)

set(clientservices_headers
  cloudlogger.h
  globalparamwrapper.h
  korvthread.h
  korvwritelog.h
  logsinks.h
  modulebase.h
  msgthreadability.h
)
list(TRANSFORM clientservices_headers PREPEND ${PROJECT_SOURCE_DIR}/infrastructure/clientservices/)
target_sources(clientservices PUBLIC FILE_SET HEADERS BASE_DIRS ${header_folders} FILES
  ${clientservices_headers} ${PROJECT_BINARY_DIR}/include/clientservices/export.h)

set(databaseservice_headers
  calltrace.h
  carditems.h
  clientconstants.h
  clouddriverdb.h
  cloudfiletable.h
  commonsqlitedb.h
  databasebindparameter.h
  databaseoperationbase.h
  databaseparameter.h
  databasequeryresult.h
  databaseservice.h
  driveconftable.h
  drivedatatable.h
  drivefulltask.h
  driverdbprovider.h
  driverdbproviderbase.h
  dropalltables.h
  fastaccessdbmodule.h
  fastaccessdbprovider.h
  fastaccesstable.h
  gallerydbprovider.h
  gallerytables.h
  integers.h
  keptconnections.h
  legacyrecords.h
  maindatabaseprovider.h
  maindbsqlprovider.h
  storefiles.h
  transdbconn.h
  transdbconnthread.h
  transferrecords.h
  transmissiondbmodule.h
  userlog.h
  userproperties.h
  v10.h
  version.h
)
list(TRANSFORM databaseservice_headers PREPEND ${PROJECT_SOURCE_DIR}/infrastructure/databaseservice/)
target_sources(databaseservice PUBLIC FILE_SET HEADERS BASE_DIRS ${header_folders} FILES
  ${databaseservice_headers} ${PROJECT_BINARY_DIR}/include/databaseservice/export.h)

set_target_properties(clientservices databaseservice PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)

set(installed clientservices databaseservice)
if(NOT BUILD_SHARED_LIBS)
  # No interface of its own: the static libraries need its code.
  list(APPEND installed platform)
endif()
install(TARGETS ${installed} EXPORT DatabaseService
  RUNTIME COMPONENT runtime
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT dev
  ARCHIVE COMPONENT dev
  FILE_SET HEADERS COMPONENT dev)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/DatabaseService)
install(EXPORT DatabaseService NAMESPACE DatabaseService:: FILE DatabaseServiceTargets.cmake
  DESTINATION ${package_folder} COMPONENT dev)
configure_package_config_file(cmake/DatabaseServiceConfig.cmake.in ${PROJECT_BINARY_DIR}/DatabaseServiceConfig.cmake
  INSTALL_DESTINATION ${package_folder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/DatabaseServiceConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/DatabaseServiceConfig.cmake
  ${PROJECT_BINARY_DIR}/DatabaseServiceConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT dev)
