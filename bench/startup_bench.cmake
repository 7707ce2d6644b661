# The programs that are started. Ours is linked as a host would link it: with the library alone.
add_executable(startup_qlx_fields bench/startup/qlx_fields.cpp)
target_link_libraries(startup_qlx_fields PRIVATE qlx_build qlx)
add_dependencies(${program} startup_qlx_fields)
target_compile_definitions(${program} PRIVATE
                           BENCH_QLX_FIELDS="$<TARGET_FILE:startup_qlx_fields>")
find_package(Qt5Widgets QUIET)
if(Qt5Widgets_FOUND)
    add_executable(startup_qt_fields bench/startup/qt_fields.cpp)
    target_link_libraries(startup_qt_fields PRIVATE qlx_build Qt5::Widgets)
    add_dependencies(${program} startup_qt_fields)
    target_compile_definitions(${program} PRIVATE
                               BENCH_QT_FIELDS="$<TARGET_FILE:startup_qt_fields>")
endif()
