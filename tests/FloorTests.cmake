find_package(GTest REQUIRED)
include(GoogleTest)

# Fakes and builders. An archive: a floor's tests take from it only what they name, so what concerns a higher floor does
# not reach them.
file(GLOB support CONFIGURE_DEPENDS support/*.cpp)
add_library(bomparser_test_support INTERFACE)
target_include_directories(bomparser_test_support INTERFACE "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/src")
target_compile_definitions(bomparser_test_support INTERFACE BOMPARSER_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
target_link_libraries(bomparser_test_support INTERFACE GTest::gmock bomparser_fmt)
set(support_library bomparser_test_support)
if(support)
  add_library(bomparser_test_support_files STATIC ${support})
  target_link_libraries(bomparser_test_support_files
    PUBLIC bomparser_test_support bomparser_tnbase
    PRIVATE bomparser_flags)
  # Of these files a test program takes only those that it needs: lower floors lack what others need.
  set_target_properties(bomparser_test_support_files PROPERTIES UNITY_BUILD OFF)
  set(support_library bomparser_test_support_files)
endif()

# Tests are compiled as fast as can be: with sanitizers the compiler takes three times as long to make them quick, and what
# takes their time is the code under test.
add_library(bomparser_test_flags INTERFACE)
if(NOT MSVC)
  target_compile_options(bomparser_test_flags INTERFACE $<$<CONFIG:Debug>:-O0> $<$<CONFIG:Debug>:-g1>)
endif()
target_link_libraries(bomparser_test_flags INTERFACE bomparser_flags)

# The test program <name>_tests of these sources.
function(bomparser_add_test_program name floor)
  set(target ${name}_tests)
  add_executable(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE ${support_library} ${floor} GTest::gtest_main bomparser_test_flags)
  gtest_discover_tests(${target}
    TEST_PREFIX "${name}."
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT 120 ENVIRONMENT "BOMPARSER_SAMPLES=${BOMPARSER_SAMPLES}")
endfunction()

function(bomparser_add_tests name floor)
  file(GLOB sources CONFIGURE_DEPENDS "unit/${name}/*_test.cpp")
  if(sources)
    bomparser_add_test_program(${name} ${floor} ${sources})
  endif()
endfunction()

bomparser_add_tests(tnbase bomparser_tnbase)
bomparser_add_tests(input bomparser_input)
bomparser_add_tests(template bomparser_template)
bomparser_add_tests(entry bomparser_engine)
bomparser_add_tests(cli bomparser_cli)

# The searches once more, as processors do them that cannot look at sixteen characters in one go.
bomparser_add_test_program(portable bomparser_tnbase unit/tnbase/RunFinder_test.cpp)
target_compile_options(portable_tests PRIVATE -U__SSE2__)
