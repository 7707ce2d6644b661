target_sources(fuzz_painter PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/painter_player.cpp)
