# Untried: see docs/windows.md. As an overlay it builds the clone that it lies in, not a release that is fetched.
get_filename_component(SOURCE_PATH "${CURRENT_PORT_DIR}/../.." ABSOLUTE)

# Handles of SQLite go to the library's users, so it has to be one shared library for all.
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)

vcpkg_check_features(OUT_FEATURE_OPTIONS options FEATURES tool DATABASESERVICE_BUILD_TOOL)
vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}" OPTIONS
  ${options}
  -DDATABASESERVICE_BUILD_TESTS=OFF
  -DDATABASESERVICE_BUILD_BENCHMARKS=OFF)
vcpkg_cmake_install()
vcpkg_copy_pdbs()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/DatabaseService)
if("tool" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES dbservice AUTO_CLEAN)
endif()

file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
file(INSTALL "${CURRENT_PORT_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
