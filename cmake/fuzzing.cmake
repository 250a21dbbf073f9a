# frontpanel_add_fuzz_target(NAME <target> SOURCES <file>... CORPUS <folder>
#                            [LIBRARIES <library>...] [DICTIONARY <file>])
#
# A libFuzzer executable that links the shared library, so that input reaches it as a client's
# would. CTest replays the seeds of the corpus once. To search, build the preset "fuzz" and run
# the executable with a folder of its own before the corpus, in which it collects what it finds.
function(frontpanel_add_fuzz_target)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME;CORPUS;DICTIONARY" "SOURCES;LIBRARIES")
    if(NOT IS_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/${arg_CORPUS})
        message(FATAL_ERROR "${arg_NAME}: there is no corpus folder \"${arg_CORPUS}\"")
    endif()
    add_executable(${arg_NAME} ${arg_SOURCES})
    frontpanel_configure_target(${arg_NAME})
    target_compile_options(${arg_NAME} PRIVATE -fsanitize=fuzzer)
    target_link_options(${arg_NAME} PRIVATE -fsanitize=fuzzer)
    target_link_libraries(${arg_NAME} PRIVATE frontpanel_data ${arg_LIBRARIES})
    set(dictionary "")
    if(arg_DICTIONARY)
        set(dictionary -dict=${CMAKE_CURRENT_SOURCE_DIR}/${arg_DICTIONARY})
    endif()
    add_test(NAME fuzz.${arg_NAME}
        COMMAND ${arg_NAME} -runs=0 ${dictionary} ${CMAKE_CURRENT_SOURCE_DIR}/${arg_CORPUS})
    set_tests_properties(fuzz.${arg_NAME} PROPERTIES TIMEOUT 120)
endfunction()
