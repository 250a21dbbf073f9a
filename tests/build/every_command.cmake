# cmake -D COMMANDS=<compile_commands.json> -D SETTING=<argument> -P every_command.cmake
# Every command that compiles a unit has the argument.
file(STRINGS ${COMMANDS} commands REGEX "^ *\"command\":")
list(LENGTH commands count)
if(count LESS 40)
    message(FATAL_ERROR "${COMMANDS} has only ${count} commands")
endif()
foreach(command IN LISTS commands)
    string(FIND "${command}" " ${SETTING} " position)
    if(position EQUAL -1)
        message(FATAL_ERROR "${SETTING} is missing in${command}")
    endif()
endforeach()
