# The programs: examples/NAME.cpp is one each; host/ is session_host and its view classes; tools/NAME/*.cpp is one a folder. Extra libraries
# of a program stand in a NAME.cmake beside its sources. All of them use the library's public headers only.

function(qlx_add_program name folder)
    add_executable(${name} ${ARGN})
    target_link_libraries(${name} PRIVATE qlx_build qlx)
    set_target_properties(${name} PROPERTIES
        INSTALL_RPATH "$ORIGIN/${QLX_RPATH_FROM_BINDIR}")
    if(EXISTS ${PROJECT_SOURCE_DIR}/${folder}/${name}.cmake)
        include(${PROJECT_SOURCE_DIR}/${folder}/${name}.cmake)
    endif()
endfunction()

file(GLOB examples CONFIGURE_DEPENDS examples/*.cpp)
foreach(source IN LISTS examples)
    get_filename_component(name ${source} NAME_WE)
    qlx_add_program(${name} examples ${source})
endforeach()

set(QLX_TOOLS)
file(GLOB tools CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/tools tools/*)
foreach(name IN LISTS tools)
    file(GLOB sources CONFIGURE_DEPENDS tools/${name}/*.cpp)
    if(sources)
        qlx_add_program(${name} tools/${name} ${sources})
        list(APPEND QLX_TOOLS ${name})
    endif()
endforeach()

# The host is written as a project of its own, so that it can be copied out and built on its own.
add_subdirectory(host)
set_target_properties(session_host PROPERTIES INSTALL_RPATH "$ORIGIN/${QLX_RPATH_FROM_BINDIR}")

# The Windows painters are measured by a program of their own, which runs in wine.
if(WIN32)
    add_executable(windows_bench bench/windows_bench.cpp)
    target_link_libraries(windows_bench PRIVATE qlx_build qlx)
endif()
