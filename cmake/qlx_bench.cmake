# One benchmark program a file of bench/. A peer that is not installed is left out, and the tables say so.

find_package(benchmark REQUIRED)
file(GLOB bench_sources CONFIGURE_DEPENDS bench/*_bench.cpp)
list(FILTER bench_sources EXCLUDE REGEX "/windows_bench\\.cpp$")  # the Windows build's, see qlx_programs.cmake
foreach(source IN LISTS bench_sources)
    get_filename_component(program ${source} NAME_WE)
    add_executable(${program} ${source})
    target_link_libraries(${program} PRIVATE qlx_build qlx qlx_dependencies benchmark::benchmark)
    target_compile_definitions(${program} PRIVATE QLX_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    if(EXISTS ${PROJECT_SOURCE_DIR}/bench/${program}.cmake)
        include(${PROJECT_SOURCE_DIR}/bench/${program}.cmake)  # finds this program's peers
    endif()
endforeach()
