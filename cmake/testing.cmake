# How tests are declared.
include(GoogleTest)

# What tests compile to is run once, so optimising them costs more than it saves.
set(FRONTPANEL_TEST_OPTIONS "" CACHE STRING "Compiler options of the tests' own sources, behind all others")

# Compiling the GoogleTest headers takes longer than most tests do, so they are compiled once.
add_library(frontpanel_test_headers OBJECT ${PROJECT_SOURCE_DIR}/tests/support/test_headers.cpp)
frontpanel_configure_target(frontpanel_test_headers)
target_compile_options(frontpanel_test_headers PRIVATE ${FRONTPANEL_TEST_OPTIONS})
target_link_libraries(frontpanel_test_headers PUBLIC GTest::gmock GTest::gtest)
target_precompile_headers(frontpanel_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)

# Labels name the builds that cannot run a test; the test presets leave it out there.
#   native          not under an emulator
#   uninstrumented  not with sanitizers or coverage, whose run-time libraries add to the exports and the memory

# An emulator takes about ten times as long.
set(FRONTPANEL_TIMEOUT_FACTOR 1)
if(CMAKE_CROSSCOMPILING_EMULATOR)
    set(FRONTPANEL_TIMEOUT_FACTOR 10)
endif()

# frontpanel_program_file(<variable> <target>)
#
# The file by which a test's script runs an executable: the executable itself, or a script of its name
# that runs it under the emulator.
function(frontpanel_program_file variable target)
    set(file $<TARGET_FILE:${target}>)
    if(CMAKE_CROSSCOMPILING_EMULATOR)
        set(file ${PROJECT_BINARY_DIR}/emulated/${target})
        list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
        file(GENERATE OUTPUT ${file}
            CONTENT "#!/bin/sh\nexec ${emulator} '$<TARGET_FILE:${target}>' \"$@\"\n"
            FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    endif()
    set(${variable} ${file} PARENT_SCOPE)
endfunction()

# frontpanel_add_test(NAME <target> SOURCES <file>... [LIBRARIES <library>...] [PRIVATE_OBJECTS]
#                     [WRAP <function>...] [TIMEOUT <seconds>]
#                     [LABEL <label> [LABELLED <case>...]] [RESOURCE_LOCK <resource>])
#
# An executable of GoogleTest cases, each of which CTest runs in a process of its own. It links
# the shared library as a client does; with PRIVATE_OBJECTS it links the library's objects
# instead, and may include private headers by their path under src/. WRAP replaces calls of a C
# function made in those objects: the test defines __wrap_<function>. Headers of tests/ are
# included by their path under it. LABEL holds for the cases LABELLED, or for all if none is named.
function(frontpanel_add_test)
    cmake_parse_arguments(PARSE_ARGV 0 arg
        "PRIVATE_OBJECTS" "NAME;TIMEOUT;LABEL;RESOURCE_LOCK" "SOURCES;LIBRARIES;WRAP;LABELLED")
    if(arg_PRIVATE_OBJECTS AND "${arg_LIBRARIES}" MATCHES "frontpanel_(data|binding|editors|base|menu|display|ui|displays|simulator|drivers|driver_[a-z]+|app)(;|$)")
        message(FATAL_ERROR "${arg_NAME}: a test with PRIVATE_OBJECTS would hold the library twice "
            "if it also linked a component that links the shared library")
    endif()
    if(arg_WRAP AND NOT arg_PRIVATE_OBJECTS)
        message(FATAL_ERROR "${arg_NAME}: WRAP reaches only calls made in PRIVATE_OBJECTS")
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 60)
    endif()
    if(syslog IN_LIST arg_WRAP)
        list(APPEND arg_WRAP __syslog_chk)
        list(APPEND arg_SOURCES ${PROJECT_SOURCE_DIR}/tests/support/fortified_syslog.cpp)
    endif()

    add_executable(${arg_NAME} ${arg_SOURCES})
    frontpanel_configure_target(${arg_NAME})
    # Where GCC inlines, it warns of pointers that are null only for what a test never asks for.
    target_compile_options(${arg_NAME} PRIVATE -Wno-null-dereference ${FRONTPANEL_TEST_OPTIONS})
    target_precompile_headers(${arg_NAME} REUSE_FROM frontpanel_test_headers)
    target_include_directories(${arg_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${arg_NAME} PRIVATE
        FRONTPANEL_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    if(arg_PRIVATE_OBJECTS)
        target_link_libraries(${arg_NAME} PRIVATE frontpanel_data_objects)
    else()
        target_link_libraries(${arg_NAME} PRIVATE frontpanel_data)
    endif()
    target_link_libraries(${arg_NAME} PRIVATE
        ${arg_LIBRARIES} GTest::gmock GTest::gtest GTest::gtest_main Threads::Threads)
    foreach(function IN LISTS arg_WRAP)
        target_link_options(${arg_NAME} PRIVATE LINKER:--wrap=${function})
    endforeach()
    set(lock)
    if(arg_RESOURCE_LOCK)
        # Tests that wait for each other begin first.
        set(lock RESOURCE_LOCK ${arg_RESOURCE_LOCK} COST 1000)
    endif()
    if(NOT arg_LABEL)
        frontpanel_discover_tests(${arg_NAME} ${arg_TIMEOUT} ${lock})
    elseif(NOT arg_LABELLED)
        frontpanel_discover_tests(${arg_NAME} ${arg_TIMEOUT} LABELS ${arg_LABEL} ${lock})
    else()
        list(JOIN arg_LABELLED ":" cases)
        frontpanel_discover_tests(${arg_NAME} ${arg_TIMEOUT} FILTER -${cases} ${lock})
        frontpanel_discover_tests(${arg_NAME} ${arg_TIMEOUT} FILTER ${cases} LABELS ${arg_LABEL}
            ${lock})
    endif()
endfunction()

# frontpanel_discover_tests(<target> <timeout> [FILTER <pattern>] [<property> <value>]...)
function(frontpanel_discover_tests target timeout)
    cmake_parse_arguments(PARSE_ARGV 2 arg "" "FILTER" "")
    math(EXPR timeout "${timeout} * ${FRONTPANEL_TIMEOUT_FACTOR}")
    math(EXPR discovery_timeout "60 * ${FRONTPANEL_TIMEOUT_FACTOR}")
    gtest_discover_tests(${target}
        TEST_PREFIX ${target}.
        TEST_FILTER "${arg_FILTER}"
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT ${discovery_timeout}
        PROPERTIES
            TIMEOUT ${timeout}
            ${arg_UNPARSED_ARGUMENTS}
            ENVIRONMENT "LSAN_OPTIONS=print_suppressions=0:suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks.supp")
endfunction()
