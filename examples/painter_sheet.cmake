target_sources(painter_sheet PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/painter_sheet.cpp)
