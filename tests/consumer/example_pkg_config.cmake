# Compiles the example in SOURCE to CLIENT with the flags that pkg-config prints for PACKAGES in
# LIBRARY_DIR.
cmake_minimum_required(VERSION 3.25)

set(ENV{PKG_CONFIG_PATH} ${LIBRARY_DIR}/pkgconfig)
execute_process(
    COMMAND pkg-config --cflags --libs ${PACKAGES}
    OUTPUT_VARIABLE flags
    COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
file(GLOB sources ${SOURCE}/*.cpp)
execute_process(
    COMMAND ${COMPILER} -std=c++17 ${sources} ${flags} -Wl,-rpath,${LIBRARY_DIR} -o ${CLIENT}
    COMMAND_ERROR_IS_FATAL ANY)
