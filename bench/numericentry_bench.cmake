# The allocator that counts stands alone: inlined beside its callers, the compiler takes it for a mismatch.
target_sources(${program} PRIVATE ${PROJECT_SOURCE_DIR}/bench/counted_allocations.cpp)
# QLineEdit with an input mask as peer of the field, where Qt is installed.
find_package(Qt5Widgets QUIET)
if(Qt5Widgets_FOUND)
    target_link_libraries(${program} PRIVATE Qt5::Widgets)
    target_compile_definitions(${program} PRIVATE BENCH_QT)
endif()
