# 32-bit ARM with hardware floating point.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(FRONTPANEL_TRIPLET arm-linux-gnueabihf)
set(FRONTPANEL_QEMU qemu-arm)
# Silences notes on calls that GCC before 7.1 compiled differently.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain-debian.cmake)
