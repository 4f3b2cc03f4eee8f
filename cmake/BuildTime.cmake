# What keeps the time that a build takes in bounds.

# The standard headers that nearly every source includes. Read once for a target they save each of its sources more than
# half a second. Sources include what they use all the same.
#
# Only for targets with little or no optimisation: with more, g++ 12 takes these headers for our own code, and warns of
# memory that is out of bounds where strings are joined.
set(common_standard_headers
  <algorithm> <array> <atomic> <chrono> <cstdint> <filesystem> <functional> <iostream> <iterator> <map> <memory> <mutex>
  <optional> <string> <string_view> <tuple> <unordered_map> <utility> <variant> <vector>)

# Compiles a target's sources in `count` groups, so that what they include is read once for each group: a third of the
# time for those who build everything. A source's group follows from its name, so a new one leaves the others where they
# are. ALONE stays what would not compile beside others of its group, where two give something the same name within the
# source or g++ 12 warns without cause, and an entry point that tests leave out when they take the other objects.
# Without the option every source is compiled by itself.
option(DATABASESERVICE_GROUP_SOURCES "Compile the sources of a target in groups" OFF)
function(compile_in_groups target count)
  if(NOT DATABASESERVICE_GROUP_SOURCES)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 2 group "" "" "ALONE")
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  list(REMOVE_ITEM sources ${group_ALONE})
  foreach(source IN LISTS sources)
    cmake_path(GET source FILENAME name)
    string(MD5 hash ${name})
    string(SUBSTRING ${hash} 0 4 hash)
    math(EXPR number "0x${hash} % ${count}")
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${number})
  endforeach()
endfunction()

# How far a build optimises code that nobody waits for: doing more takes longer than the code will ever run.
if(NOT MSVC)
  set(no_optimisation $<$<NOT:$<CONFIG:Debug>>:-O0>)
  set(little_optimisation $<$<CONFIG:Release>:-O1>)
  set(usual_optimisation $<$<CONFIG:Release>:-O2>)
  set(full_optimisation $<$<CONFIG:Release>:-O3>)
endif()
