# The foreign libraries, and how a program is linked with them.
#
# bomparser_fmt, bomparser_xml   what the floors link
# bomparser_link_whole(<target>) puts these libraries and the C++ library into the program, if the option says so
#
# Loading a dozen shared libraries and resolving their names takes several times as long as translating a small file,
# and most of it is spent on libraries that only come with others. The C library stays shared: the dialog's module is
# loaded at run time, and there must be one C library only.

option(BOMPARSER_STATIC_LIBRARIES "Put the libraries of the command line into it, all but the C library" OFF)

# Sets `archives` in the caller's scope to what a program needs that has libxml2 in it; empty where something is missing,
# with its name in `missing`.
function(bomparser_find_xml_archives)
  # Debian's own answer, where pkg-config is there to give it, else what it is for Debian 12.
  set(names xml2 icui18n icuuc icudata z lzma m)
  find_package(PkgConfig QUIET)
  if(PKG_CONFIG_FOUND)
    pkg_check_modules(BOMPARSER_XML2 QUIET libxml-2.0)
    if(BOMPARSER_XML2_FOUND)
      set(names ${BOMPARSER_XML2_STATIC_LIBRARIES})
    endif()
  endif()

  set(found "")
  foreach(name IN LISTS names)
    if(name MATCHES "^(c|dl|m|pthread|rt)$")  # Parts of the C library.
      list(APPEND found ${name})
      continue()
    endif()
    find_library(BOMPARSER_ARCHIVE_${name} lib${name}.a)
    mark_as_advanced(BOMPARSER_ARCHIVE_${name})
    if(NOT BOMPARSER_ARCHIVE_${name})
      set(archives "" PARENT_SCOPE)
      set(missing "lib${name}.a" PARENT_SCOPE)
      return()
    endif()
    list(APPEND found "${BOMPARSER_ARCHIVE_${name}}")
  endforeach()
  set(archives "${found}" PARENT_SCOPE)
endfunction()

set(BOMPARSER_WHOLE_PROGRAMS OFF)
set(archives "")
if(BOMPARSER_STATIC_LIBRARIES AND BOMPARSER_SANITIZE)
  message(STATUS "Shared libraries: the sanitizers need them.")
elseif(BOMPARSER_STATIC_LIBRARIES)
  include(CheckCXXSourceCompiles)
  set(CMAKE_REQUIRED_LINK_OPTIONS -static-libstdc++ -static-libgcc)
  check_cxx_source_compiles("#include <string>\nint main(int n, char** a) { return std::string(a[0]).size() == size_t(n); }"
    BOMPARSER_HAS_STATIC_CXX_LIBRARY)
  unset(CMAKE_REQUIRED_LINK_OPTIONS)
  bomparser_find_xml_archives()
  if(archives AND BOMPARSER_HAS_STATIC_CXX_LIBRARY)
    set(BOMPARSER_WHOLE_PROGRAMS ON)
  elseif(archives)
    message(STATUS "Shared libraries: the C++ library cannot be linked statically here.")
  else()
    message(STATUS "Shared libraries: ${missing} is missing.")
  endif()
endif()

# There is no archive of fmt in Debian, and its shared library would bring the shared C++ library back.
add_library(bomparser_fmt INTERFACE)
target_link_libraries(bomparser_fmt INTERFACE
  $<IF:$<BOOL:${BOMPARSER_WHOLE_PROGRAMS}>,fmt::fmt-header-only,fmt::fmt>)

# The property is asked of the program that is linked in the end: the dialog's module, which is made of the same floors,
# keeps the shared libraries.
add_library(bomparser_xml INTERFACE)
target_include_directories(bomparser_xml SYSTEM INTERFACE ${LIBXML2_INCLUDE_DIRS})
target_link_libraries(bomparser_xml INTERFACE
  "$<IF:$<BOOL:$<TARGET_PROPERTY:BOMPARSER_WHOLE>>,${archives},LibXml2::LibXml2>")

function(bomparser_link_whole target)
  if(BOMPARSER_WHOLE_PROGRAMS)
    set_target_properties(${target} PROPERTIES BOMPARSER_WHOLE ON)
    # Nothing of the libraries' copies may be found by modules that are loaded later and have their own.
    target_link_options(${target} PRIVATE
      -static-libstdc++ -static-libgcc LINKER:--exclude-libs,ALL LINKER:--gc-sections)
  endif()
endfunction()
