# Qt's widgets as peers of the controls, where Qt is installed.
find_package(Qt5Widgets QUIET)
if(Qt5Widgets_FOUND)
    target_link_libraries(${program} PRIVATE Qt5::Widgets)
    target_compile_definitions(${program} PRIVATE BENCH_QT)
endif()
