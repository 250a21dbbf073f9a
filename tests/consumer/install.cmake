# Installs the library and COMPONENTS from BUILD to PREFIX, leaving nothing of an earlier installation.
file(REMOVE_RECURSE ${PREFIX})
foreach(component IN ITEMS Runtime Development LISTS COMPONENTS)
    execute_process(
        COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX} --component ${component}
        COMMAND_ERROR_IS_FATAL ANY)
endforeach()
