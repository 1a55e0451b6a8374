# Sets `result` to the .cpp files of the current folder. A file named for one system (*Posix.cpp, *Windows.cpp) belongs to
# that system's build only.
function(bomparser_find_sources result)
  file(GLOB sources CONFIGURE_DEPENDS "*.cpp")
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "Posix\\.cpp$")
  else()
    list(FILTER sources EXCLUDE REGEX "Windows\\.cpp$")
  endif()
  set(${result} "${sources}" PARENT_SCOPE)
endfunction()

# bomparser_add_floor(<target> [EXCEPT file...] [BELOW target] [PRIVATE_LINKS target...] [PUBLIC_LINKS target...])
#
# Makes the static library of one floor from the .cpp files of the current folder. BELOW is the one floor that it stands
# on. A floor whose folder has no .cpp file yet is an interface library of the same name.
function(bomparser_add_floor target)
  cmake_parse_arguments(PARSE_ARGV 1 floor "" "BELOW" "EXCEPT;PRIVATE_LINKS;PUBLIC_LINKS")
  bomparser_find_sources(sources)
  foreach(name IN LISTS floor_EXCEPT)
    list(REMOVE_ITEM sources "${CMAKE_CURRENT_SOURCE_DIR}/${name}")
  endforeach()

  if(NOT sources)
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(${target} INTERFACE ${floor_BELOW} ${floor_PUBLIC_LINKS})
    return()
  endif()

  add_library(${target} STATIC ${sources})
  target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(${target}
    PUBLIC ${floor_BELOW} ${floor_PUBLIC_LINKS}
    PRIVATE bomparser_flags ${floor_PRIVATE_LINKS})
  if(CMAKE_AUTOMOC)
    # The build does not notice by itself that moc has to look at new files.
    file(GLOB headers CONFIGURE_DEPENDS "*.h")
    if(NOT "${headers}" STREQUAL "${${target}_HEADERS}")
      file(REMOVE "${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/timestamp")
      set(${target}_HEADERS "${headers}" CACHE INTERNAL "The headers that moc has looked at")
    endif()
  endif()
endfunction()
