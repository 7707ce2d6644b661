# Peers of the painter benchmark; Qt and JUCE are compared with when they are installed, Cairo always is.
find_package(Qt5Gui QUIET)
if(Qt5Gui_FOUND)
    target_link_libraries(${program} PRIVATE Qt5::Gui)
    target_compile_definitions(${program} PRIVATE BENCH_QT)
endif()
set(juce_modules /usr/share/juce/modules)
pkg_check_modules(JUCE_NEEDS IMPORTED_TARGET freetype2 libpng libjpeg)
if(EXISTS ${juce_modules}/juce_graphics/juce_graphics.cpp AND JUCE_NEEDS_FOUND)
    set(juce_units ${PROJECT_SOURCE_DIR}/bench/peers/juce_core_unit.cpp
                   ${PROJECT_SOURCE_DIR}/bench/peers/juce_graphics_unit.cpp)
    target_sources(${program} PRIVATE ${juce_units} ${PROJECT_SOURCE_DIR}/bench/peers/juce_painter.cpp)
    set_source_files_properties(${juce_units} PROPERTIES COMPILE_OPTIONS -w)
    target_include_directories(${program} SYSTEM PRIVATE ${juce_modules})
    target_compile_definitions(${program} PRIVATE BENCH_JUCE NDEBUG=1
        JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1 JUCE_STANDALONE_APPLICATION=1 JUCE_USE_CURL=0)
    target_link_libraries(${program} PRIVATE PkgConfig::JUCE_NEEDS dl rt z)
endif()
