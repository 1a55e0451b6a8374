find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets Test)

add_library(bomparser_ui_test_support STATIC ui/support/UiTest.cpp)
target_compile_definitions(bomparser_ui_test_support
  PUBLIC BOMPARSER_SCREENSHOTS="${PROJECT_BINARY_DIR}/screenshots")
target_link_libraries(bomparser_ui_test_support
  PUBLIC ${support_library} bomparser_controls Qt6::Test
  PRIVATE bomparser_flags)

# The test program <name>_tests of one floor of the interface. A program start takes longer than most of its tests, so
# CTest runs them a fixture at a time; pictures are taken at two scales.
function(bomparser_add_ui_tests name floor)
  file(GLOB sources CONFIGURE_DEPENDS "ui/${name}/*_test.cpp")
  if(NOT sources)
    return()
  endif()
  set(target ${name}_tests)
  add_executable(${target} ${sources} ui/support/main.cpp)
  target_link_libraries(${target} PRIVATE bomparser_ui_test_support ${floor} GTest::gtest bomparser_test_flags)
  set(environment
    "BOMPARSER_SAMPLES=${BOMPARSER_SAMPLES}" QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=${CMAKE_CURRENT_BINARY_DIR})
  gtest_discover_tests(${target}
    TEST_PREFIX "${name}."
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 120 ENVIRONMENT "${environment}")
  add_test(NAME ${name}.pictures_at_200_percent COMMAND ${target} --gtest_filter=*Picture*)
  set_tests_properties(${name}.pictures_at_200_percent PROPERTIES
    TIMEOUT 300 ENVIRONMENT "${environment};QT_SCALE_FACTOR=2")
endfunction()

bomparser_add_ui_tests(controls bomparser_controls)
bomparser_add_ui_tests(views bomparser_views)
bomparser_add_ui_tests(dialogs bomparser_dialogs)
