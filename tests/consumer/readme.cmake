# Checks that README shows SOURCE as it is.
file(READ ${SOURCE} example)
file(READ ${README} readme)
string(FIND "${readme}" "```cpp\n${example}```\n" position)
if(position EQUAL -1)
    message(FATAL_ERROR "${README} does not show ${SOURCE}")
endif()
