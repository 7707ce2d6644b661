# One file is compiled for processors with AVX2; it is called only where Sys_HasAVX2 says that there is one.
# Not with mingw-w64: its GCC keeps 256-bit values on a stack that Windows aligns to 16 bytes only.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$" AND NOT MINGW)
    set_source_files_properties(qlx/imaging/qlx_maskrows_avx2.cpp PROPERTIES
                                COMPILE_OPTIONS $<IF:$<CXX_COMPILER_ID:MSVC>,/arch:AVX2,-mavx2>)
    set_source_files_properties(qlx/imaging/qlx_spans.cpp PROPERTIES
                                COMPILE_DEFINITIONS QLX_AVX2_ROWS)
endif()
