# The bare chain makes every call through its table, as the chain that it is compared with does; a compiler
# that sees all of it would call directly.
target_sources(event_bench PRIVATE ${PROJECT_SOURCE_DIR}/bench/peers/bare_chain.cpp)
set_source_files_properties(${PROJECT_SOURCE_DIR}/bench/peers/bare_chain.cpp PROPERTIES COMPILE_OPTIONS -fno-devirtualize)

# Peers of event_bench: wxWidgets, Qt and JUCE, each where it is installed.
find_program(WX_CONFIG wx-config)
if(WX_CONFIG)
    execute_process(COMMAND ${WX_CONFIG} --cxxflags OUTPUT_VARIABLE wx_flags OUTPUT_STRIP_TRAILING_WHITESPACE)
    execute_process(COMMAND ${WX_CONFIG} --libs core,base OUTPUT_VARIABLE wx_libraries OUTPUT_STRIP_TRAILING_WHITESPACE)
    separate_arguments(wx_flags)
    separate_arguments(wx_libraries)
    list(TRANSFORM wx_flags REPLACE "^-I" "-isystem")
    target_compile_options(event_bench PRIVATE ${wx_flags})
    target_compile_definitions(event_bench PRIVATE EVENT_BENCH_WX)
    target_link_libraries(event_bench PRIVATE ${wx_libraries})
endif()

find_package(Qt5Widgets QUIET)
if(Qt5Widgets_FOUND)
    target_compile_definitions(event_bench PRIVATE EVENT_BENCH_QT)
    target_link_libraries(event_bench PRIVATE Qt5::Widgets)
endif()

set(juce_modules /usr/share/juce/modules)
if(EXISTS ${juce_modules}/juce_data_structures)
    add_library(event_bench_juce STATIC ${juce_modules}/juce_core/juce_core.cpp ${juce_modules}/juce_events/juce_events.cpp
                ${juce_modules}/juce_data_structures/juce_data_structures.cpp)
    target_include_directories(event_bench_juce SYSTEM PUBLIC ${juce_modules})
    target_compile_definitions(event_bench_juce PUBLIC JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1 NDEBUG=1
                               JUCE_STANDALONE_APPLICATION=0 JUCE_USE_CURL=0 JUCE_WEB_BROWSER=0
                               JUCE_MODULE_AVAILABLE_juce_core=1 JUCE_MODULE_AVAILABLE_juce_events=1
                               JUCE_MODULE_AVAILABLE_juce_data_structures=1)
    target_compile_options(event_bench_juce PRIVATE -w)
    target_link_libraries(event_bench_juce PUBLIC Threads::Threads dl rt z)
    target_compile_definitions(event_bench PRIVATE EVENT_BENCH_JUCE)
    target_link_libraries(event_bench PRIVATE event_bench_juce)
endif()
