target_sources(gallery PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/gallery.cpp)
target_compile_definitions(gallery PRIVATE QLX_GALLERY_FOLDER="${PROJECT_SOURCE_DIR}/examples/gallery")
