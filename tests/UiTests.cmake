find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets Test)

add_library(bomparser_ui_test_support STATIC ui/support/UiTest.cpp)
target_compile_definitions(bomparser_ui_test_support
  PUBLIC BOMPARSER_SCREENSHOTS="${PROJECT_BINARY_DIR}/screenshots")
target_link_libraries(bomparser_ui_test_support
  PUBLIC ${support_library} bomparser_controls Qt6::Test
  PRIVATE bomparser_flags)

# The test program <name>_tests of one floor of the interface. A program start takes longer than most of its tests, so
# pictures are taken at two scales. WITHOUT_APPLICATION: the tests make the
# application object themselves, or see to it that there is none; their pictures are taken at one scale. EXCEPT: tests that are run in
# another way.
function(bomparser_add_ui_tests name floor)
  cmake_parse_arguments(PARSE_ARGV 2 tests "WITHOUT_APPLICATION" "EXCEPT" "")
  file(GLOB sources CONFIGURE_DEPENDS "ui/${name}/*_test.cpp")
  if(NOT sources)
    return()
  endif()
  set(target ${name}_tests)
  set(main ui/support/main.cpp)
  set(gtest GTest::gtest)
  if(tests_WITHOUT_APPLICATION)
    set(main "")
    set(gtest GTest::gtest_main)
  endif()
  add_executable(${target} ${sources} ${main})
  target_link_libraries(${target} PRIVATE bomparser_ui_test_support ${floor} ${gtest} bomparser_test_flags)
  set(environment
    "BOMPARSER_SAMPLES=${BOMPARSER_SAMPLES}" QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=${CMAKE_CURRENT_BINARY_DIR})
  gtest_discover_tests(${target}
    TEST_PREFIX "${name}."
    TEST_FILTER "-${tests_EXCEPT}"
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 120 ENVIRONMENT "${environment}")
  if(tests_WITHOUT_APPLICATION)
    return()
  endif()
  add_test(NAME ${name}.pictures_at_200_percent COMMAND ${target} --gtest_filter=*Picture*)
  set_tests_properties(${name}.pictures_at_200_percent PROPERTIES
    TIMEOUT 300 ENVIRONMENT "${environment};QT_SCALE_FACTOR=2")
endfunction()

bomparser_add_ui_tests(controls bomparser_controls)
bomparser_add_ui_tests(views bomparser_views)
bomparser_add_ui_tests(dialogs bomparser_dialogs)
bomparser_add_ui_tests(host bomparser_host)

# The modules are loaded as hosts and the program load them: nothing of them is linked.
bomparser_add_ui_tests(component bomparser_host WITHOUT_APPLICATION)
target_compile_definitions(component_tests PRIVATE BOMPARSER_COMPONENT="$<TARGET_FILE:bomparser_component>")
add_dependencies(component_tests bomparser_component)

bomparser_add_ui_tests(desktop bomparser_controls WITHOUT_APPLICATION EXCEPT DesktopRealWindowTest.*)
target_compile_definitions(desktop_tests PRIVATE
  BOMPARSER_DESKTOP="$<TARGET_FILE:bomparser_desktop>" BOMPARSER_PROGRAM="$<TARGET_FILE:bomparser>")
add_dependencies(desktop_tests bomparser_desktop bomparser)
# The module looks for the component beside the running program.
set_target_properties(desktop_tests PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")

# In real windows: on a bare display, and on a small one with few colours and a window manager.
find_program(XVFB_RUN xvfb-run)
find_program(WINDOW_MANAGER jwm)
if(BOMPARSER_SANITIZE)
  message(STATUS "No tests in real windows: the sanitizers take offence at libraries that talk to the display.")
elseif(XVFB_RUN AND WINDOW_MANAGER)
  set(in_real_window $<TARGET_FILE:desktop_tests> --gtest_filter=DesktopRealWindowTest.*)
  add_test(NAME desktop.in_a_real_window COMMAND "${XVFB_RUN}" -a -s "-screen 0 1280x900x24" ${in_real_window})
  add_test(NAME desktop.in_a_small_managed_window
    COMMAND "${XVFB_RUN}" -a -s "-screen 0 1024x600x16" sh -c "\"$1\" & shift; \"$@\"" sh "${WINDOW_MANAGER}" ${in_real_window})
  set_tests_properties(desktop.in_a_real_window desktop.in_a_small_managed_window PROPERTIES
    TIMEOUT 120 ENVIRONMENT "QT_QPA_PLATFORM=xcb;XDG_RUNTIME_DIR=${CMAKE_CURRENT_BINARY_DIR}")
else()
  message(WARNING "No xvfb-run or no jwm: the tests in real windows are left out.")
endif()

# What the modules export.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_FOUND AND CMAKE_NM)
  foreach(kind component desktop)
    add_test(NAME exports_of_the_${kind}
      COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/scripts/check_exports.py"
        ${kind} $<TARGET_FILE:bomparser_${kind}> --nm "${CMAKE_NM}")
    set_tests_properties(exports_of_the_${kind} PROPERTIES TIMEOUT 60)
  endforeach()
endif()
