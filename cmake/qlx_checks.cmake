# Checks of the tree itself, run among the tests.

find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_test(NAME check_floors COMMAND Python3::Interpreter ${PROJECT_SOURCE_DIR}/scripts/check_floors.py)

# Every public header compiles when it is included first and alone. One preset is enough for that.
option(QLX_HEADER_CHECK "Compile every header alone" OFF)
if(NOT QLX_HEADER_CHECK)
    return()
endif()
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
     basekit/*.h mediakit/*.h newfilelibs/*.h qlx/*.h app/*.h)
set(header_sources)
foreach(header IN LISTS headers)
    qlx_on_this_platform(${header} wanted)
    if(wanted)
        string(REPLACE "/" "_" name ${header})
        set(source ${CMAKE_BINARY_DIR}/header-check/${name}.cpp)
        if(NOT EXISTS ${source})
            file(WRITE ${source} "#include \"${header}\"\n")
        endif()
        list(APPEND header_sources ${source})
    endif()
endforeach()
add_library(qlx_header_check OBJECT ${header_sources})
target_link_libraries(qlx_header_check PRIVATE qlx_build qlx_dependencies)
target_compile_options(qlx_header_check PRIVATE -O0)
