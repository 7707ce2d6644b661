# One test program for every two folder levels below tests/, so that they run side by side and a change
# relinks little. tests/support holds what they share.

if(WIN32)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/gtest EXCLUDE_FROM_ALL)
else()
    find_package(GTest REQUIRED)
endif()

file(GLOB support_sources CONFIGURE_DEPENDS tests/support/*.cpp)
add_library(qlx_test_support STATIC ${support_sources})
target_link_libraries(qlx_test_support PUBLIC qlx_build qlx GTest::gtest GTest::gmock)
target_compile_definitions(qlx_test_support PUBLIC
    QLX_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data"
    QLX_TEST_GOLDEN="${PROJECT_SOURCE_DIR}/tests/golden"
    QLX_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    QLX_TEST_OUTPUT="${CMAKE_BINARY_DIR}/test-output")
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/test-output)

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
    add_test(NAME ${program} COMMAND ${program}
             --gtest_output=xml:${CMAKE_BINARY_DIR}/reports/${program}.xml)
endforeach()
