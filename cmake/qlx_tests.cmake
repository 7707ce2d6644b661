# One test program for every two folder levels below tests/, so that they run side by side and a change
# relinks little. tests/support holds what they share.

if(MINGW)
    set(BUILD_GMOCK ON)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/gtest EXCLUDE_FROM_ALL)
else()
    find_package(GTest REQUIRED)
endif()

# Relative to the source folder, which main() makes the working directory: see tests/support/main.cpp.
file(RELATIVE_PATH build_folder ${PROJECT_SOURCE_DIR} ${CMAKE_BINARY_DIR})
file(GLOB support_sources CONFIGURE_DEPENDS tests/support/*.cpp)
list(FILTER support_sources EXCLUDE REGEX "/fuzz_replay\\.cpp$")  # a main of its own, see qlx_fuzz.cmake
add_library(qlx_test_support STATIC ${support_sources})
target_link_libraries(qlx_test_support PUBLIC qlx_build qlx GTest::gtest GTest::gmock)
target_compile_definitions(qlx_test_support PUBLIC
    QLX_TEST_DATA="tests/data"
    QLX_TEST_GOLDEN="tests/golden"
    QLX_SOURCE_DIR="."
    QLX_TEST_OUTPUT="${build_folder}/test-output")
set_source_files_properties(tests/support/main.cpp PROPERTIES
                            COMPILE_DEFINITIONS QLX_ROOT="${PROJECT_SOURCE_DIR}")
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/test-output)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/reports)

file(GLOB_RECURSE test_sources CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} tests/*_test.cpp)
foreach(source IN LISTS test_sources)
    qlx_on_this_platform(${source} wanted)
    if(wanted AND source MATCHES "^tests/([^/]+/[^/]+)/")
        string(REPLACE "/" "_" program tests_${CMAKE_MATCH_1})
        list(APPEND ${program}_sources ${source})
        list(APPEND test_programs ${program})
    elseif(wanted)
        message(FATAL_ERROR "${source}: tests lie at least two folders below tests/")
    endif()
endforeach()
list(REMOVE_DUPLICATES test_programs)
foreach(program IN LISTS test_programs)
    add_executable(${program} ${${program}_sources})
    target_link_libraries(${program} PRIVATE qlx_test_support)
    if(program MATCHES "^tests_host_")
        target_link_libraries(${program} PRIVATE session_views)
        add_dependencies(${program} session_host)
    endif()
    # scripts/test_summary.py counts the cases in the report; a report of an earlier run must not stand
    # in for a program that crashed.
    add_test(NAME ${program} COMMAND ${program} --gtest_output=xml:reports/${program}.xml
             WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
    set_tests_properties(${program} PROPERTIES TIMEOUT 600 ENVIRONMENT
        "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks.txt:print_suppressions=0")
    if(MINGW)
        set_tests_properties(${program} PROPERTIES FIXTURES_REQUIRED wine)
    endif()
endforeach()

# The tool's tests run the tool, and let it load a library as a host has one.
add_library(qlx_test_host_classes MODULE tests/support/host_classes/host_classes.cpp)
target_link_libraries(qlx_test_host_classes PRIVATE qlx_build qlx)
set_target_properties(qlx_test_host_classes PROPERTIES PREFIX "" SUFFIX ".module"
                      LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
add_dependencies(tests_tools_qlxview qlxview qlx_test_host_classes)
if(TARGET session_views)
    add_dependencies(tests_tools_qlxview session_views)
endif()

if(MINGW)
    add_test(NAME wine_up COMMAND ${PROJECT_SOURCE_DIR}/scripts/wine-up)
    set_tests_properties(wine_up PROPERTIES FIXTURES_SETUP wine TIMEOUT 300)
    add_test(NAME wine_down COMMAND ${PROJECT_SOURCE_DIR}/scripts/wine-down)
    set_tests_properties(wine_down PROPERTIES FIXTURES_CLEANUP wine TIMEOUT 60)

    # What only a user sees: the host driven at its window, and the zip unpacked elsewhere.
    foreach(painter gdi direct2d)
        add_test(NAME host_window_${painter}
                 COMMAND ${PROJECT_SOURCE_DIR}/tests/win64/window.sh ${CMAKE_BINARY_DIR}
                         ${CMAKE_BINARY_DIR}/test-output/window-${painter} ${painter})
        # Alone: other windows of the display would take the keys.
        set_tests_properties(host_window_${painter} PROPERTIES FIXTURES_REQUIRED wine RUN_SERIAL TRUE
                             TIMEOUT 300 SKIP_RETURN_CODE 77)
    endforeach()
    add_test(NAME zip_package COMMAND ${PROJECT_SOURCE_DIR}/tests/win64/package.sh ${CMAKE_BINARY_DIR}
                                      ${CMAKE_BINARY_DIR}/test-output/package)
    set_tests_properties(zip_package PROPERTIES FIXTURES_REQUIRED wine TIMEOUT 300)
elseif(NOT WIN32)
    include(qlx_checks)
endif()
