# The target sndfile for platforms that Debian packages no libsndfile for: its own source package, as a DLL, without
# the external codecs. FLAC, Ogg and MPEG files are then reported as unsupported.

set(QLX_SNDFILE_SOURCE ${CMAKE_SOURCE_DIR}/build/third_party/sndfile-src CACHE PATH
    "libsndfile's unpacked source; fetched from Debian when it is not there")
if(NOT EXISTS ${QLX_SNDFILE_SOURCE}/include/sndfile.h)
    get_filename_component(third_party ${QLX_SNDFILE_SOURCE} DIRECTORY)
    execute_process(COMMAND ${CMAKE_SOURCE_DIR}/scripts/fetch_sndfile.sh ${third_party}
                    COMMAND_ERROR_IS_FATAL ANY)
endif()

function(qlx_add_sndfile)
    set(CMAKE_POLICY_DEFAULT_CMP0077 NEW) # or its options overrule what is set here, the first time only
    set(BUILD_SHARED_LIBS ON)
    foreach(option ENABLE_EXTERNAL_LIBS ENABLE_MPEG BUILD_PROGRAMS BUILD_EXAMPLES BUILD_TESTING BUILD_REGTEST
            ENABLE_CPACK ENABLE_PACKAGE_CONFIG INSTALL_MANPAGES INSTALL_PKGCONFIG_MODULE)
        set(${option} OFF)
    endforeach()
    set(CMAKE_C_FLAGS "${CMAKE_C_FLAGS} -w -O2")
    set(CMAKE_MESSAGE_LOG_LEVEL WARNING)
    add_subdirectory(${QLX_SNDFILE_SOURCE} ${CMAKE_BINARY_DIR}/sndfile EXCLUDE_FROM_ALL)
endfunction()
qlx_add_sndfile()
