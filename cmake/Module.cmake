# bomparser_finish_module(<target> <export list>)
#
# A library that is loaded at run time: it lies beside the program, exports what the list (a linker's version script)
# names and nothing else, and lacks nothing.
function(bomparser_finish_module target exports)
  set_target_properties(${target} PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}"
    RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}"
    LINK_DEPENDS "${exports}")
  if(NOT MSVC)
    # Floors bring libraries of which a module may use nothing.
    target_link_options(${target} PRIVATE "LINKER:--version-script=${exports}" LINKER:--as-needed)
  endif()
  if(NOT MSVC AND NOT BOMPARSER_SANITIZE)
    # The sanitizers' own names come with the program.
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
endfunction()
