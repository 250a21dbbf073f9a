# IBM Z, big endian: no device is one, but it shows every assumption about the order of bytes.
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(FRONTPANEL_TRIPLET s390x-linux-gnu)
set(FRONTPANEL_QEMU qemu-s390x)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-debian.cmake)
