# Compiles SOURCE to CLIENT with what pkg-config tells about the package in LIBRARY_DIR, checks
# that the client asks for the library by its soname, and runs it.
cmake_minimum_required(VERSION 3.25)

set(ENV{PKG_CONFIG_PATH} ${LIBRARY_DIR}/pkgconfig)
execute_process(
    COMMAND pkg-config --cflags --libs frontpanel_data
    OUTPUT_VARIABLE flags
    COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(
    COMMAND ${COMPILER} -std=c++17 ${SOURCE} ${flags} -Wl,-rpath,${LIBRARY_DIR} -o ${CLIENT}
    COMMAND_ERROR_IS_FATAL ANY)

execute_process(
    COMMAND objdump -p ${CLIENT}
    OUTPUT_VARIABLE headers
    COMMAND_ERROR_IS_FATAL ANY)
if(NOT headers MATCHES "NEEDED +libfrontpanel_data\\.so\\.0\n")
    message(FATAL_ERROR "the client does not ask for libfrontpanel_data.so.0:\n${headers}")
endif()
execute_process(COMMAND ${CLIENT} COMMAND_ERROR_IS_FATAL ANY)
