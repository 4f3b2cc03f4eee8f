# What keeps the time that a build takes in bounds.

# The standard headers that nearly every source includes. Read once for a target they save each of its sources more than
# half a second. Sources include what they use all the same.
#
# Only for targets with little or no optimisation: with more, g++ 12 takes these headers for our own code, and warns of
# memory that is out of bounds where strings are joined.
set(common_standard_headers
  <algorithm> <array> <atomic> <chrono> <cstdint> <filesystem> <functional> <iostream> <iterator> <map> <memory> <mutex>
  <optional> <string> <string_view> <tuple> <unordered_map> <utility> <variant> <vector>)

# How far a release build optimises code that nobody waits for: doing more takes longer than the code will ever run.
if(NOT MSVC)
  set(no_optimisation $<$<CONFIG:Release>:-O0>)
  set(little_optimisation $<$<CONFIG:Release>:-O1>)
  set(usual_optimisation $<$<CONFIG:Release>:-O2>)
  set(full_optimisation $<$<CONFIG:Release>:-O3>)
endif()
