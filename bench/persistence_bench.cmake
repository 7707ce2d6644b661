# QXmlStreamReader and JUCE's ValueTree as peers of the description reader, where they are installed.
find_package(Qt5Core QUIET)
if(Qt5Core_FOUND)
    target_link_libraries(${program} PRIVATE Qt5::Core)
    target_compile_definitions(${program} PRIVATE QLX_PEER_QT)
endif()
set(juce /usr/share/juce/modules)
if(EXISTS ${juce}/juce_data_structures/juce_data_structures.cpp)
    add_library(qlx_peer_juce STATIC
                ${juce}/juce_core/juce_core.cpp ${juce}/juce_events/juce_events.cpp
                ${juce}/juce_data_structures/juce_data_structures.cpp)
    target_include_directories(qlx_peer_juce SYSTEM PUBLIC ${juce})
    target_compile_definitions(qlx_peer_juce PUBLIC
        JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1 JUCE_STANDALONE_APPLICATION=0 NDEBUG=1 JUCE_USE_CURL=0
        JUCE_WEB_BROWSER=0 JUCE_CHECK_MEMORY_LEAKS=0)
    target_compile_options(qlx_peer_juce PRIVATE -w -O2)
    target_link_libraries(qlx_peer_juce PUBLIC Threads::Threads ${CMAKE_DL_LIBS} rt z)
    target_link_libraries(${program} PRIVATE qlx_peer_juce)
    target_compile_definitions(${program} PRIVATE QLX_PEER_JUCE)
endif()
