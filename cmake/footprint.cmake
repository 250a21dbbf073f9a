# What keeps the library small and its calls short, in every optimised build: the packages are made of one.
include(CheckCXXSourceCompiles)
include(CheckLinkerFlag)

# Relocations of addresses within the library, which its tables of virtual operations hold by the hundred, take eight
# bytes for each 63 of them instead of 24 for each. The device's dynamic linker has to know the form: glibc 2.36 or later.
check_linker_flag(CXX LINKER:--fatal-warnings,-z,pack-relative-relocs FRONTPANEL_LINKER_PACKS_RELOCATIONS)
check_cxx_source_compiles("
    #include <features.h>
    #if !__GLIBC_PREREQ(2, 36)
    #error its dynamic linker does not know packed relocations
    #endif
    int main() {}" FRONTPANEL_LIBC_UNPACKS_RELOCATIONS)
if(FRONTPANEL_LINKER_PACKS_RELOCATIONS AND FRONTPANEL_LIBC_UNPACKS_RELOCATIONS)
    set(pack_relocations ON)
else()
    set(pack_relocations OFF)
endif()
option(FRONTPANEL_PACK_RELOCATIONS
    "Pack the library's relocations (needs glibc 2.36 on the device)" ${pack_relocations})

set(FRONTPANEL_PAGE_SIZE "" CACHE STRING
    "Largest memory page, in bytes, of the kernels that the library runs on (empty: the linker's)")

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(link_time_optimisation ON)
else()
    set(link_time_optimisation OFF)
endif()
option(FRONTPANEL_LTO "Optimise the library as a whole when it is linked" ${link_time_optimisation})

# -Oz prefers shorter instructions even if they are slower. -malign-data=abi aligns arrays for their elements, not for vector
# instructions.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-Oz FRONTPANEL_COMPILER_MINIMISES)
check_cxx_compiler_flag(-malign-data=abi FRONTPANEL_COMPILER_ALIGNS_DATA)

# frontpanel_reduce_footprint(<shared library> OBJECTS <library of its objects> PREEMPTIBLE <dynamic list>
#     PURE_VIRTUAL <source> NOTHROW <source>... HOT <source>...)
#
# The dynamic list names the symbols that a program may hold a copy of; the library uses its own of all others. The source
# PURE_VIRTUAL replaces the compiler's function of that name. No function in the sources NOTHROW throws, calls a function that
# may throw, or calls back. The sources HOT call functions of other libraries where each nanosecond counts.
function(frontpanel_reduce_footprint library)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "OBJECTS;PREEMPTIBLE;PURE_VIRTUAL" "NOTHROW;HOT")
    if(FRONTPANEL_SANITIZE OR FRONTPANEL_COVERAGE)
        return()
    endif()
    set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel,None>)
    set(smallest $<CONFIG:MinSizeRel>)

    target_compile_options(${arg_OBJECTS} PRIVATE
        $<${optimised}:-ffunction-sections;-fdata-sections;-fno-semantic-interposition>)
    target_link_options(${library} PRIVATE
        $<${optimised}:LINKER:--gc-sections,-Bsymbolic,--dynamic-list=${arg_PREEMPTIBLE},--hash-style=gnu>)
    set_property(TARGET ${library} APPEND PROPERTY LINK_DEPENDS ${arg_PREEMPTIBLE})
    target_sources(${library} PRIVATE $<${optimised}:${arg_PURE_VIRTUAL}>)
    target_link_options(${library} PRIVATE $<${optimised}:LINKER:--wrap=__cxa_pure_virtual>)
    if(FRONTPANEL_COMPILER_MINIMISES)
        target_compile_options(${arg_OBJECTS} PRIVATE $<${smallest}:-Oz>)
        target_link_options(${library} PRIVATE $<${smallest}:-Oz>)
    endif()
    if(FRONTPANEL_COMPILER_ALIGNS_DATA)
        target_compile_options(${arg_OBJECTS} PRIVATE $<${smallest}:-malign-data=abi>)
    endif()
    # Functions that no exception passes need no unwinding tables. Optimisation at link time would add them again.
    set_property(SOURCE ${arg_NOTHROW} APPEND PROPERTY COMPILE_OPTIONS
        $<${smallest}:-fno-exceptions;-fno-unwind-tables;-fno-asynchronous-unwind-tables;-fno-lto>)
    # A call through the dynamic linker's table looks up its function at the first call. The shorter call without the table
    # looks it up at start-up, where a hundred of them take 25 us.
    target_compile_options(${arg_OBJECTS} PRIVATE $<${smallest}:-fno-plt>)
    set_property(SOURCE ${arg_HOT} APPEND PROPERTY COMPILE_OPTIONS $<${optimised}:-fno-plt>)
    if(FRONTPANEL_PACK_RELOCATIONS)
        target_link_options(${library} PRIVATE $<${optimised}:LINKER:-z,pack-relative-relocs>)
    endif()
    if(FRONTPANEL_PAGE_SIZE)
        target_link_options(${library} PRIVATE $<${optimised}:LINKER:-z,max-page-size=${FRONTPANEL_PAGE_SIZE}>)
    endif()
    # Code and constants share their pages, since each change of protection pads the file to a page and is mapped apart,
    # which takes 20 us at start-up. Linkers for other processors do so by themselves, and would pad to pages of 64 KB.
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|i[3-6]86)$")
        target_link_options(${library} PRIVATE $<${optimised}:LINKER:-z,noseparate-code>)
    endif()

    if(FRONTPANEL_LTO)
        # Tests of private code link the same objects as they were compiled: they replace functions by the linker.
        target_compile_options(${arg_OBJECTS} PRIVATE $<${optimised}:-flto;-ffat-lto-objects>)
        target_link_options(${arg_OBJECTS} INTERFACE $<${optimised}:-fno-lto>)
        target_link_options(${library} PRIVATE $<${optimised}:-flto=1;-flto-partition=one>)
    endif()
endfunction()
