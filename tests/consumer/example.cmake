# cmake -D PROGRAM=<volume> -D SOURCE=<examples/volume> -D README=<README.md> -P example.cmake
# The read-me's example is the shipped one, and it prints what it should.
file(READ ${SOURCE}/volume.cpp example)
file(READ ${README} readme)
string(FIND "${readme}" "```cpp\n${example}```\n" position)
if(position EQUAL -1)
    message(FATAL_ERROR "the example in ${README} is not ${SOURCE}/volume.cpp")
endif()

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
file(READ ${SOURCE}/expected.txt expected)
if(NOT printed STREQUAL expected)
    message(FATAL_ERROR "the example printed:\n${printed}instead of:\n${expected}")
endif()
