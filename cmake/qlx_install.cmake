# What ./dev install and the packages hold: the library, its headers in the folders they have in the source, a CMake
# package, a pkg-config file, debugger printers and the tools.

include(CMakePackageConfigHelpers)

set(QLX_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/qlx)
target_include_directories(qlx INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_compile_features(qlx INTERFACE cxx_std_20)
set_target_properties(qlx PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})

install(TARGETS qlx EXPORT qlx-targets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)

file(GLOB_RECURSE public_headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
     basekit/*.h mediakit/*.h newfilelibs/*.h qlx/*.h app/*.h)
foreach(header IN LISTS public_headers)
    qlx_on_this_platform(${header} wanted)
    if(wanted)
        get_filename_component(folder ${header} DIRECTORY)
        install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT development)
    endif()
endforeach()

# CMake package
install(EXPORT qlx-targets NAMESPACE qlx:: DESTINATION ${QLX_PACKAGE_DIR} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qlx-config.cmake.in ${CMAKE_BINARY_DIR}/qlx-config.cmake
                              INSTALL_DESTINATION ${QLX_PACKAGE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qlx-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qlx-config.cmake ${CMAKE_BINARY_DIR}/qlx-config-version.cmake
        DESTINATION ${QLX_PACKAGE_DIR} COMPONENT development)

# pkg-config. The prefix is told relative to the file, so that an installed tree may be moved; how many levels that is
# depends on whether the library folder has one name or two (lib, lib/x86_64-linux-gnu).
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    set(QLX_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
    set(QLX_PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
else()
    file(RELATIVE_PATH upward /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    string(REGEX REPLACE "/$" "" upward ${upward})
    set(QLX_PC_PREFIX "\${pcfiledir}/${upward}")
    set(QLX_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/qlx.pc.in ${CMAKE_BINARY_DIR}/qlx.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/qlx.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# Debugger printers. gdb loads NAME-gdb.py beside a library NAME when the folder is on its auto-load safe path, and
# from its own auto-load folder always.
if(WIN32)
    install(FILES debug/qlx.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/qlx COMPONENT development)
    install(FILES ${QLX_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
else()
    install(FILES debug/qlx_gdb.py debug/qlx.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/qlx COMPONENT development)
    file(RELATIVE_PATH QLX_DATADIR_FROM_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR} ${CMAKE_INSTALL_FULL_DATADIR})
    set(loader ${CMAKE_BINARY_DIR}/libqlx.so.${PROJECT_VERSION}-gdb.py)
    configure_file(${PROJECT_SOURCE_DIR}/debug/autoload-gdb.py.in ${loader} @ONLY)
    install(FILES ${loader} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    install(FILES ${loader} COMPONENT development
            DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR})
endif()

if(QLX_TOOLS)
    install(TARGETS ${QLX_TOOLS} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()
if(MINGW)
    # The zip is what somebody without a build tries: the host comes along, with the library that reads its audio.
    install(TARGETS session_host session_views sndfile RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    install(DIRECTORY host/data DESTINATION ${CMAKE_INSTALL_DATADIR}/qlx/host COMPONENT tools)
endif()
# What the library looks for at run time, and themes to start one's own from.
install(DIRECTORY data/themes DESTINATION ${CMAKE_INSTALL_DATADIR}/qlx COMPONENT runtime)
if(NOT WIN32)
    install(FILES data/fonts.conf DESTINATION ${CMAKE_INSTALL_DATADIR}/qlx COMPONENT runtime)
endif()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qlx COMPONENT runtime)

# What must be built before `cmake --install`.
add_custom_target(install_parts DEPENDS qlx ${QLX_TOOLS})
if(WIN32)
    add_dependencies(install_parts session_host)
endif()

# Packages: cpack -G DEB here, cpack -G ZIP for Windows.
set(CPACK_PACKAGE_NAME qlx)
set(CPACK_PACKAGE_VENDOR "QLX")
set(CPACK_PACKAGE_CONTACT "The QLX maintainers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Graphical application framework for audio workstations")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
# The ones that are loaded by name are in no list that the packager could read.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libsdl2-2.0-0, libpangoft2-1.0-0")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libqlx${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libqlx-dev)
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME qlx-tools)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
if(QLX_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
    set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
endif()
include(CPack)
