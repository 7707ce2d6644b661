# Peers of the region benchmark; each is compared with when it is installed.
pkg_check_modules(PIXMAN IMPORTED_TARGET pixman-1)
if(PIXMAN_FOUND)
    target_link_libraries(${program} PRIVATE PkgConfig::PIXMAN)
    target_compile_definitions(${program} PRIVATE BENCH_PIXMAN)
endif()
find_package(Qt5Gui QUIET)
if(Qt5Gui_FOUND)
    target_link_libraries(${program} PRIVATE Qt5::Gui)
    target_compile_definitions(${program} PRIVATE BENCH_QT)
endif()
set(juce_modules /usr/share/juce/modules)
if(EXISTS ${juce_modules}/juce_graphics/geometry/juce_RectangleList.h)
    # RectangleList is header-only over juce_core; the core module is built into the program.
    target_sources(${program} PRIVATE ${PROJECT_SOURCE_DIR}/bench/peers/juce_core_unit.cpp
                                      ${PROJECT_SOURCE_DIR}/bench/peers/juce_regions.cpp)
    set_source_files_properties(${PROJECT_SOURCE_DIR}/bench/peers/juce_core_unit.cpp
                                PROPERTIES COMPILE_OPTIONS -w)
    target_include_directories(${program} SYSTEM PRIVATE ${juce_modules})
    target_compile_definitions(${program} PRIVATE BENCH_JUCE NDEBUG=1
        JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1 JUCE_STANDALONE_APPLICATION=1 JUCE_USE_CURL=0)
    target_link_libraries(${program} PRIVATE dl rt z)
endif()
# The pairwise algorithms, to show what the indexes are worth.
target_sources(${program} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/literal_region.cpp)
