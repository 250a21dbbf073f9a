# Checks that each of PROGRAMS prints expected.txt of the example in SOURCE. EMULATOR runs them; empty for none.
file(READ ${SOURCE}/expected.txt expected)
foreach(program IN LISTS PROGRAMS)
    execute_process(
        COMMAND ${EMULATOR} ${program}
        WORKING_DIRECTORY ${SOURCE}
        OUTPUT_VARIABLE printed
        COMMAND_ERROR_IS_FATAL ANY)
    if(NOT printed STREQUAL expected)
        message(FATAL_ERROR "${program} printed:\n${printed}instead of:\n${expected}")
    endif()
endforeach()
