target_sources(fuzz_po PRIVATE ${PROJECT_SOURCE_DIR}/tools/qlxview/po.cpp)
