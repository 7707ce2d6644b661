# Fuzz targets: fuzz/fuzz_NAME.cpp, each with LLVMFuzzerTestOneInput. With QLX_FUZZ (clang only) they are linked with
# libFuzzer; in every other build with a main that replays fuzz/corpus/NAME, as a test.

file(GLOB fuzz_sources CONFIGURE_DEPENDS fuzz/fuzz_*.cpp)
foreach(source IN LISTS fuzz_sources)
    get_filename_component(program ${source} NAME_WE)
    string(REGEX REPLACE "^fuzz_" "" subject ${program})
    if(QLX_FUZZ)
        add_executable(${program} ${source})
        target_link_options(${program} PRIVATE -fsanitize=fuzzer)
    else()
        add_executable(${program} ${source} tests/support/fuzz_replay.cpp)
        add_test(NAME ${program} COMMAND ${program} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${subject})
        set_tests_properties(${program} PROPERTIES TIMEOUT 300 ENVIRONMENT
            "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks.txt:print_suppressions=0")
        if(MINGW)
            set_tests_properties(${program} PROPERTIES FIXTURES_REQUIRED wine)
        endif()
    endif()
    target_link_libraries(${program} PRIVATE qlx_build qlx)
    if(EXISTS ${PROJECT_SOURCE_DIR}/fuzz/${program}.cmake)
        include(${PROJECT_SOURCE_DIR}/fuzz/${program}.cmake)
    endif()
endforeach()
