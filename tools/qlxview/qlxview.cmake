# CLI11 is headers only. A cross build reaches them through a link, as it does Boost's.
if(MINGW)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/cli11-include)
    file(CREATE_LINK /usr/include/CLI ${CMAKE_BINARY_DIR}/cli11-include/CLI SYMBOLIC)
    target_include_directories(${name} SYSTEM PRIVATE ${CMAKE_BINARY_DIR}/cli11-include)
elseif(WIN32)
    find_package(CLI11 REQUIRED)
    target_link_libraries(${name} PRIVATE CLI11::CLI11)
endif()
# Every command needs CLI11, which takes longer to compile than the command itself. Clang's tools want no precompiled
# header where nothing is built.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_precompile_headers(${name} PRIVATE <CLI/CLI.hpp>)
endif()
