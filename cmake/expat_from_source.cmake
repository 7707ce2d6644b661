# The target qlx_expat for platforms that Debian packages no expat for: its own source package, built by a target of
# ours (the patched source does not build with the CMake files it brings).

set(QLX_EXPAT_SOURCE ${PROJECT_SOURCE_DIR}/build/third_party/expat-src CACHE PATH
    "Expat's unpacked source; fetched from Debian when it is not there")
if(NOT EXISTS ${QLX_EXPAT_SOURCE}/expat/lib/expat.h)
    get_filename_component(third_party ${QLX_EXPAT_SOURCE} DIRECTORY)
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/fetch_expat.sh ${third_party}
                    COMMAND_ERROR_IS_FATAL ANY)
endif()

file(WRITE ${CMAKE_BINARY_DIR}/expat-config/expat_config.h.new
"#define BYTEORDER 1234
#define XML_CONTEXT_BYTES 1024
#define XML_DTD 1
#define XML_NS 1
#define HAVE_MEMMOVE 1
")
file(COPY_FILE ${CMAKE_BINARY_DIR}/expat-config/expat_config.h.new
     ${CMAKE_BINARY_DIR}/expat-config/expat_config.h ONLY_IF_DIFFERENT)

set(expat_lib ${QLX_EXPAT_SOURCE}/expat/lib)
add_library(qlx_expat STATIC ${expat_lib}/xmlparse.c ${expat_lib}/xmlrole.c ${expat_lib}/xmltok.c)
target_include_directories(qlx_expat PRIVATE ${CMAKE_BINARY_DIR}/expat-config)
target_include_directories(qlx_expat SYSTEM INTERFACE ${expat_lib})
target_compile_definitions(qlx_expat PUBLIC XML_STATIC PRIVATE HAVE_EXPAT_CONFIG_H)
target_compile_options(qlx_expat PRIVATE -w -O2)
