# The host's views, and the host itself for its start.
target_link_libraries(${program} PRIVATE session_views)
add_dependencies(${program} session_host)
target_compile_definitions(${program} PRIVATE BENCH_SESSION_HOST="$<TARGET_FILE:session_host>")
