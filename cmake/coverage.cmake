# FRONTPANEL_COVERAGE instruments the whole tree. After a run of the tests, the target "coverage"
# prints the figures of the sources that ship and writes build/coverage/coverage/index.html.
option(FRONTPANEL_COVERAGE "Instrument for coverage (gcov)" OFF)

if(FRONTPANEL_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)

    find_program(GCOVR gcovr)
    if(GCOVR)
        file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/coverage)
        add_custom_target(coverage
            COMMAND ${GCOVR}
                --root ${PROJECT_SOURCE_DIR}
                --object-directory ${PROJECT_BINARY_DIR}
                --filter ${PROJECT_SOURCE_DIR}/include/
                --filter ${PROJECT_SOURCE_DIR}/src/
                --filter ${PROJECT_SOURCE_DIR}/base/
                --filter ${PROJECT_SOURCE_DIR}/binding/
                --filter ${PROJECT_SOURCE_DIR}/editors/
                --filter ${PROJECT_SOURCE_DIR}/menu/
                --filter ${PROJECT_SOURCE_DIR}/display/
                --filter ${PROJECT_SOURCE_DIR}/ui/
                --filter ${PROJECT_SOURCE_DIR}/displays/
                --filter ${PROJECT_SOURCE_DIR}/simulator/
                --filter ${PROJECT_SOURCE_DIR}/drivers/
                --filter ${PROJECT_SOURCE_DIR}/app/
                --exclude-unreachable-branches
                --exclude-throw-branches
                --html-details ${PROJECT_BINARY_DIR}/coverage/index.html
                --txt
                --print-summary
            WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
            COMMENT "Collecting coverage"
            VERBATIM)
    endif()
endif()
