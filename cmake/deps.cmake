# What the library stands on. Everything comes from Debian packages that ./dev installs, with MSVC from vcpkg.

add_library(qlx_dependencies INTERFACE)

if(MSVC)
    # With vcpkg.json beside this project, vcpkg provides them; see docs/win32.md.
    set(QLX_WITH_DESKTOP OFF)
    find_package(EXPAT REQUIRED)
    find_package(Boost REQUIRED)
    target_link_libraries(qlx_dependencies INTERFACE EXPAT::EXPAT Boost::boost gdi32 user32 imm32 ole32 shell32 uuid)
    return()
endif()

# Boost.Regex is header-only. A cross build must not see the rest of /usr/include, so the headers are
# reached through a folder that holds nothing but a link to them.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/boost-include)
file(CREATE_LINK /usr/include/boost ${CMAKE_BINARY_DIR}/boost-include/boost SYMBOLIC)
target_include_directories(qlx_dependencies SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/boost-include)

if(WIN32)
    set(QLX_WITH_DESKTOP OFF)
    include(expat_from_source)
    include(win64_runtime)
    # Direct2D and its kin are loaded at run time; uuid holds only their identifiers.
    target_link_libraries(qlx_dependencies INTERFACE qlx_expat gdi32 user32 imm32 ole32 shell32 uuid)
else()
    find_package(EXPAT REQUIRED)
    target_link_libraries(qlx_dependencies INTERFACE EXPAT::EXPAT)
    find_package(PkgConfig REQUIRED)
    # Everything is compiled against; SDL and Pango are loaded when a run needs them (qlx_sdlapi,
    # qlx_pangoapi), so that start-up does not pay for the fifty libraries behind them.
    pkg_check_modules(QLX_DESKTOP REQUIRED cairo pango pangocairo pangoft2 fontconfig freetype2 sdl2)
    target_include_directories(qlx_dependencies SYSTEM INTERFACE ${QLX_DESKTOP_INCLUDE_DIRS})
    target_compile_options(qlx_dependencies INTERFACE ${QLX_DESKTOP_CFLAGS_OTHER})
    pkg_check_modules(QLX_LINKED REQUIRED IMPORTED_TARGET cairo fontconfig freetype2)
    target_link_libraries(qlx_dependencies INTERFACE $<LINK_ONLY:PkgConfig::QLX_LINKED>
                                                     ${CMAKE_DL_LIBS})
    set(QLX_WITH_DESKTOP ON)
endif()
