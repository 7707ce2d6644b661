# Peers of the painter benchmark; Qt is compared with when it is installed, Cairo always is.
find_package(Qt5Gui QUIET)
if(Qt5Gui_FOUND)
    target_link_libraries(${program} PRIVATE Qt5::Gui)
    target_compile_definitions(${program} PRIVATE BENCH_QT)
endif()
