# Which floor includes which.
set(check_layers "${PROJECT_SOURCE_DIR}/scripts/check_layers.py")
add_test(NAME layers COMMAND Python3::Interpreter "${check_layers}")
add_test(NAME layers_self_test COMMAND Python3::Interpreter "${check_layers}" --self-test)

# The manual leaves nothing out and leads nowhere wrong.
set(check_manual "${PROJECT_SOURCE_DIR}/scripts/check_manual.py")
add_test(NAME manual COMMAND Python3::Interpreter "${check_manual}")
add_test(NAME manual_self_test COMMAND Python3::Interpreter "${check_manual}" --self-test)

# Every header compiles alone. One with a source file of its name is the first that this includes (the layers test sees
# to it), so the others are left. libxml2 is left out on purpose: no header may need it but by its one door.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/src/*.h")
if(NOT BOMPARSER_UI)
  list(FILTER headers EXCLUDE REGEX "^(ui|host|entry/component)/")
endif()
set(units "")
foreach(header IN LISTS headers)
  string(REGEX REPLACE "\\.h$" ".cpp" source "${header}")
  if(EXISTS "${PROJECT_SOURCE_DIR}/src/${source}")
    continue()
  endif()
  set(unit "${CMAKE_CURRENT_BINARY_DIR}/headers/${header}.cpp")
  file(CONFIGURE OUTPUT "${unit}" CONTENT "#include \"${header}\"\n" @ONLY)
  list(APPEND units "${unit}")
endforeach()
if(units)
  add_library(bomparser_headers OBJECT EXCLUDE_FROM_ALL ${units})
  target_include_directories(bomparser_headers PRIVATE "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(bomparser_headers PRIVATE bomparser_flags bomparser_fmt CLI11::CLI11)
  if(BOMPARSER_UI)
    target_link_libraries(bomparser_headers PRIVATE Qt6::Widgets)
  endif()
  add_test(NAME headers COMMAND "${CMAKE_COMMAND}" --build "${PROJECT_BINARY_DIR}" --target bomparser_headers -j 2)
  set_tests_properties(headers PROPERTIES TIMEOUT 600)
endif()

# Formatting and lint: what there is at test time, whether or not it is built.
add_test(NAME format COMMAND "${PROJECT_SOURCE_DIR}/scripts/format" --check)
add_custom_target(lint
  COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/scripts/lint.py" --build "${PROJECT_BINARY_DIR}"
  USES_TERMINAL
  COMMENT "clang-tidy on what has changed")
