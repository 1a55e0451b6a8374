# What every translation unit of the project is compiled with. Third-party headers come in as system headers, so the
# warnings concern our own code alone.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(BOMPARSER_CCACHE ccache)
if(BOMPARSER_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${BOMPARSER_CCACHE}")
endif()

add_library(bomparser_flags INTERFACE)
target_compile_features(bomparser_flags INTERFACE cxx_std_20)

if(MSVC)
  target_compile_options(bomparser_flags INTERFACE /W4 /WX /permissive- /utf-8)
else()
  target_compile_options(bomparser_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual -Wcast-qual -Werror)
endif()

if(BOMPARSER_SANITIZE)
  target_compile_options(bomparser_flags INTERFACE
    -fsanitize=${BOMPARSER_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(bomparser_flags INTERFACE -fsanitize=${BOMPARSER_SANITIZE})
  target_compile_definitions(bomparser_flags INTERFACE _GLIBCXX_ASSERTIONS)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The branches that the sanitizers add make this warning of GCC see uninitialized values where there are none; the
    # other builds keep it.
    target_compile_options(bomparser_flags INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

if(BOMPARSER_FUZZ)
  # The floors need the fuzzer's counters; its main function comes with the fuzz targets.
  target_compile_options(bomparser_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(BOMPARSER_COVERAGE)
  target_compile_options(bomparser_flags INTERFACE --coverage)
  target_link_options(bomparser_flags INTERFACE --coverage)
endif()
