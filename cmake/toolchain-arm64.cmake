# 64-bit ARM.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(FRONTPANEL_TRIPLET aarch64-linux-gnu)
set(FRONTPANEL_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-debian.cmake)
