# Warnings are errors in our own code, never in what includes it.
add_library(databaseservice_warnings INTERFACE)
if(MSVC)
  target_compile_options(databaseservice_warnings INTERFACE /W4 /WX /permissive- /utf-8
    # Exported classes hold members of the standard library and derive from its templates. Library and client are built
    # with one compiler and one runtime, as such an interface asks for anyway.
    /wd4251 /wd4275)
else()
  # The destructor of the engine's base class is public and not virtual by contract; providers are never
  # deleted through it, so the warning about that stays off.
  target_compile_options(databaseservice_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Wold-style-cast
    -Wno-non-virtual-dtor -Wno-delete-non-virtual-dtor
    # g++ 12 sees overlapping copies in plain concatenations of strings, which are none.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    # What the sanitizers weave in makes g++ see uninitialised values where there are none.
    target_compile_options(databaseservice_warnings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  endif()
endif()
