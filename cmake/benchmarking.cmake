# frontpanel_add_benchmark(NAME <target> SOURCES <file>... [LIBRARIES <library>...])
#
# A Google Benchmark executable against the shared library. CTest runs every case for a moment, so
# that a benchmark does not rot; figures come from running the executable of a release build.
function(frontpanel_add_benchmark)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME" "SOURCES;LIBRARIES")
    add_executable(${arg_NAME} ${arg_SOURCES})
    frontpanel_configure_target(${arg_NAME})
    target_link_libraries(${arg_NAME} PRIVATE
        frontpanel_data ${arg_LIBRARIES} benchmark::benchmark benchmark::benchmark_main)
    add_test(NAME bench.${arg_NAME} COMMAND ${arg_NAME} --benchmark_min_time=0.001)
    # Long ones first, so that others run beside them.
    set_tests_properties(bench.${arg_NAME} PROPERTIES TIMEOUT 120 COST 100)
endfunction()
