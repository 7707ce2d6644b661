# Puts the compiler's run-time DLLs beside the programs. They are DLLs on purpose: with a static run time each module
# has exception counters of its own, and std::uncaught_exceptions() goes wrong across the boundary.

set(QLX_RUNTIME_DLLS)
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${path}")
        set(path /usr/x86_64-w64-mingw32/lib/${dll})
    endif()
    set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll})
    list(APPEND QLX_RUNTIME_DLLS ${copy})
    if(NOT EXISTS ${copy})
        file(COPY ${path} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
        # 24 MB of symbols, which every program start would map.
        execute_process(COMMAND ${CMAKE_STRIP} --strip-unneeded ${copy} COMMAND_ERROR_IS_FATAL ANY)
    endif()
endforeach()
