include(GoogleTest)

# Builds every program of unit tests, and nothing that only desktop tests need.
add_custom_target(unit_tests)
# Builds the programs of those tests on real desktops that together take few minutes.
add_custom_target(quick_desktop_tests)

# From GNOME 50 on mutter is no window manager for X servers.
execute_process(COMMAND mutter --help
  RESULT_VARIABLE mutter_result OUTPUT_VARIABLE mutter_help ERROR_QUIET)
set(mutter_lacks_x11 FALSE)
if(mutter_result EQUAL 0 AND NOT mutter_help MATCHES "--x11")
  set(mutter_lacks_x11 TRUE)
endif()

# tilewright_test(<target> SOURCES <files...> [DEPENDS <targets...>] [LABEL unit|desktop|long|desktop-plasma|desktop-labwc|desktop-wayfire]
#                 [QUICK] [GUI] [TIMEOUT <seconds>] [NEEDS <program>])
#
# A GoogleTest program; every test in it becomes a test of its own for ctest. GUI programs get a
# QApplication (on the offscreen platform unless QT_QPA_PLATFORM says otherwise), the others a
# QCoreApplication. QUICK ones among the desktop tests are a first look at another release; ctest has
# them as desktop-quick. Those that NEED a program are there, but disabled, where it is not installed;
# Tests/expected-tests.py says why, by their label; so are the desktop tests that are about mutter, where
# that is no window manager for X servers. A test that skips itself counts as failed: a skipped
# test proves nothing.
function(tilewright_test target)
  cmake_parse_arguments(PARSE_ARGV 1 test "GUI;QUICK" "LABEL;TIMEOUT;NEEDS" "SOURCES;DEPENDS")
  if(NOT test_LABEL)
    set(test_LABEL unit)
  endif()
  set(cost)
  if(test_TIMEOUT)
    # What may take long starts first, also on the first run: at the end it would run alone.
    set(cost COST ${test_TIMEOUT})
  else()
    set(test_TIMEOUT 300)
  endif()
  if(test_GUI)
    set(main tilewright_gui_test_main)
  else()
    set(main tilewright_core_test_main)
  endif()
  add_executable(${target} ${test_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_link_libraries(${target} PRIVATE
    ${test_DEPENDS} ${main} tilewright_test_support GTest::gtest GTest::gmock tilewright_options)
  # Optimising tests takes longer than the tests gain by it. What they test is built as it is shipped.
  target_compile_options(${target} PRIVATE "$<$<CONFIG:Release>:-O1>")
  if(test_LABEL STREQUAL "unit")
    add_dependencies(unit_tests ${target})
  endif()
  if(test_QUICK)
    add_dependencies(quick_desktop_tests ${target})
    string(APPEND test_LABEL "-quick")
  endif()
  set(disabled FALSE)
  if(test_NEEDS)
    string(MAKE_C_IDENTIFIER "TILEWRIGHT_${test_NEEDS}_PROGRAM" program)
    find_program(${program} "${test_NEEDS}")
    if(NOT ${program})
      set(disabled TRUE)
    endif()
  endif()
  gtest_discover_tests(${target}
    DISCOVERY_TIMEOUT 120
    PROPERTIES
      LABELS "${test_LABEL}"
      TIMEOUT ${test_TIMEOUT}
      ${cost}
      DISABLED ${disabled}
      FAIL_REGULAR_EXPRESSION "\\[  SKIPPED \\]")
  if(mutter_lacks_x11 AND NOT test_LABEL STREQUAL "unit")
    # Which tests there are is known only once the program is built: ctest reads this after its list.
    set(without_mutter "${CMAKE_CURRENT_BINARY_DIR}/${target}-without-mutter.cmake")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/WithoutMutter.cmake.in" "${without_mutter}" @ONLY)
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${without_mutter}")
  endif()
endfunction()
