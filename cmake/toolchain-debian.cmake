# Debian's cross compilers (packages g++-TRIPLET). Included with FRONTPANEL_TRIPLET, the compiler's
# name for the device's architecture, and FRONTPANEL_QEMU, the emulator of qemu-user.
#
# Headers and libraries come from FRONTPANEL_SYSROOT and from the compiler, never from this machine's
# own /usr. Without one, a folder of the build tree serves. It gets links to the headers that are the
# same for every architecture, which suffices to build the library; scripts/test --arch unpacks the
# device's libraries there, which the panel and the tests need.
set(FRONTPANEL_SYSROOT ${CMAKE_BINARY_DIR}/sysroot
    CACHE PATH "Root folder of the device's headers and libraries")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES FRONTPANEL_SYSROOT)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${FRONTPANEL_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${FRONTPANEL_TRIPLET})
set(CMAKE_SYSROOT ${FRONTPANEL_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${FRONTPANEL_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${FRONTPANEL_SYSROOT}/usr/lib/${FRONTPANEL_TRIPLET}/pkgconfig:${FRONTPANEL_SYSROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")
set(CMAKE_CROSSCOMPILING_EMULATOR ${FRONTPANEL_QEMU} -L ${FRONTPANEL_SYSROOT})

if(FRONTPANEL_SYSROOT STREQUAL "${CMAKE_BINARY_DIR}/sysroot")
    foreach(shared IN ITEMS
            include/boost include/rapidjson include/CLI share/cmake/RapidJSON share/cmake/CLI11)
        set(link ${FRONTPANEL_SYSROOT}/usr/${shared})
        if(EXISTS /usr/${shared} AND NOT EXISTS ${link})
            cmake_path(GET link PARENT_PATH folder)
            file(MAKE_DIRECTORY ${folder})
            file(CREATE_LINK /usr/${shared} ${link} SYMBOLIC)
        endif()
    endforeach()
endif()
