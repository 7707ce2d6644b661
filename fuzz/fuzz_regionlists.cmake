target_sources(fuzz_regionlists PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/literal_region.cpp)
