# What the cross-build for Windows links instead of this machine's libraries. Included at the end of the first project()
# call, which is where the preset mingw puts it; after that every find_package in the project finds what is made here.
#
# Sources that Debian has no package of come out of npm packages that carry them; their tarballs are fetched by name and
# version, checked, and nothing of them is run.
enable_language(C)
set(packages ${PROJECT_BINARY_DIR}/packages)

# Sets `out` to the folder with the content of an npm package.
function(fetch_npm_package name version sha256 out)
  set(folder ${packages}/${name}-${version})
  set(${out} ${folder}/package PARENT_SCOPE)
  if(EXISTS ${folder})
    return()
  endif()
  find_program(NPM_PROGRAM npm REQUIRED)
  message(STATUS "Fetching ${name} ${version}")
  file(MAKE_DIRECTORY ${packages})
  execute_process(COMMAND ${NPM_PROGRAM} pack --silent --ignore-scripts ${name}@${version}
    WORKING_DIRECTORY ${packages} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  set(tarball ${folder}.tgz)
  file(SHA256 ${tarball} found)
  if(NOT found STREQUAL sha256)
    message(FATAL_ERROR "${tarball} is not the package that it should be: its SHA-256 is ${found}")
  endif()
  file(REMOVE_RECURSE ${folder}.part)
  file(ARCHIVE_EXTRACT INPUT ${tarball} DESTINATION ${folder}.part)
  file(RENAME ${folder}.part ${folder})
endfunction()

# Lets find_package succeed for a package whose targets are made here.
function(mark_as_found)
  foreach(package IN LISTS ARGN)
    string(TOLOWER ${package} package)
    file(WRITE ${CMAKE_FIND_PACKAGE_REDIRECTS_DIR}/${package}-config.cmake "")
  endforeach()
endfunction()

# One sqlite3.dll beside the other libraries, with SQLite's default options.
fetch_npm_package(better-sqlite3 11.10.0 71e2d66a44dafc35649ff82742cf4908557fc31841108d19703b74b7065c0293 carrier)
add_library(sqlite3 SHARED ${carrier}/deps/sqlite3/sqlite3.c)
add_library(SQLite::SQLite3 ALIAS sqlite3)
target_compile_definitions(sqlite3 PRIVATE SQLITE_API=__declspec\(dllexport\))
target_include_directories(sqlite3 SYSTEM INTERFACE $<BUILD_INTERFACE:${carrier}/deps/sqlite3>)
set_target_properties(sqlite3 PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
install(TARGETS sqlite3 EXPORT DatabaseService RUNTIME COMPONENT runtime ARCHIVE COMPONENT dev)
mark_as_found(SQLite3)

# utf8proc, which knows how wide a character is.
fetch_npm_package(tree-sitter 0.14.0 abfc77ae1b3f87d25717892d3d84ca138ec616b5f7bbe803b08cf041ac8d9a93 carrier)
set(UTF8PROC_INCLUDE_DIR ${carrier}/vendor/tree-sitter/lib/utf8proc CACHE PATH "Made by the cross-build")
add_library(utf8proc STATIC EXCLUDE_FROM_ALL ${UTF8PROC_INCLUDE_DIR}/utf8proc.c)
target_compile_definitions(utf8proc PUBLIC UTF8PROC_STATIC)
set(UTF8PROC_LIBRARY utf8proc CACHE STRING "Made by the cross-build")

# Libraries that are headers alone are the same for every system. Links keep the rest of /usr/include out of sight.
set(headers ${packages}/include)
file(MAKE_DIRECTORY ${headers})
foreach(header IN ITEMS CLI concurrentqueue fmt nlohmann spdlog xxh3.h xxhash.h)
  file(CREATE_LINK /usr/include/${header} ${headers}/${header} SYMBOLIC)
endforeach()
foreach(target IN ITEMS CLI11::CLI11 nlohmann_json::nlohmann_json spdlog::spdlog_header_only)
  add_library(${target} INTERFACE IMPORTED)
  target_include_directories(${target} SYSTEM INTERFACE ${headers})
endforeach()
target_compile_definitions(spdlog::spdlog_header_only INTERFACE SPDLOG_FMT_EXTERNAL FMT_HEADER_ONLY)
set(CONCURRENTQUEUE_INCLUDE_DIR ${headers}/concurrentqueue CACHE PATH "Made by the cross-build")
set(XXHASH_INCLUDE_DIR ${headers} CACHE PATH "Made by the cross-build")
mark_as_found(CLI11 nlohmann_json spdlog)

# GoogleTest, whose sources Debian packages.
set(googletest /usr/src/googletest/googletest)
add_library(gtest STATIC EXCLUDE_FROM_ALL ${googletest}/src/gtest-all.cc)
target_include_directories(gtest SYSTEM PUBLIC ${googletest}/include PRIVATE ${googletest})
add_library(gtest_main STATIC EXCLUDE_FROM_ALL ${googletest}/src/gtest_main.cc)
target_link_libraries(gtest_main PUBLIC gtest)
add_library(GTest::gtest ALIAS gtest)
add_library(GTest::gtest_main ALIAS gtest_main)
mark_as_found(GTest)

# The compiler's own libraries are shared too, since exceptions go from one of ours to another.
foreach(name IN ITEMS libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
    OUTPUT_VARIABLE library OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  file(COPY ${library} DESTINATION ${PROJECT_BINARY_DIR}/bin)
  install(FILES ${library} DESTINATION bin COMPONENT runtime)
endforeach()
