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

# GNU's linkers for ARM pack no relocations yet. LLVM's does from version 15 on; the compiler finds it in a folder of its
# own, under any name of the package.
set(FRONTPANEL_LLD_OPTIONS -B${PROJECT_BINARY_DIR}/lld -fuse-ld=lld)
if(NOT FRONTPANEL_LINKER_PACKS_RELOCATIONS AND FRONTPANEL_LIBC_UNPACKS_RELOCATIONS)
    find_program(FRONTPANEL_LLD
        NAMES ld.lld-19 ld.lld-18 ld.lld-17 ld.lld-16 ld.lld-15 ld.lld
        DOC "LLVM's linker, for the library where the compiler's own packs no relocations")
    if(FRONTPANEL_LLD)
        file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/lld)
        file(CREATE_LINK ${FRONTPANEL_LLD} ${PROJECT_BINARY_DIR}/lld/ld.lld SYMBOLIC)
        check_linker_flag(CXX "${FRONTPANEL_LLD_OPTIONS};LINKER:--fatal-warnings,-z,pack-relative-relocs"
            FRONTPANEL_LLD_PACKS_RELOCATIONS)
    endif()
    if(NOT FRONTPANEL_LLD_PACKS_RELOCATIONS)
        message(STATUS
            "The library's relocations are not packed: neither the compiler's linker nor an ld.lld, 15 or later, does so")
    endif()
endif()
if(FRONTPANEL_LIBC_UNPACKS_RELOCATIONS AND
        (FRONTPANEL_LINKER_PACKS_RELOCATIONS OR FRONTPANEL_LLD_PACKS_RELOCATIONS))
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

# frontpanel_link_by_lld(<shared library> <library of its objects> <condition>)
#
# LLVM's linker cannot read what g++ keeps for the optimisation of the whole, so g++ makes one object of all of them first.
# It pads no file to pages, however large they are. The data that is protected after start-up ends on the largest page of
# a kernel, as with GNU's linker for 64-bit ARM.
function(frontpanel_link_by_lld library objects condition)
    set(page_size ${FRONTPANEL_PAGE_SIZE})
    if(NOT page_size)
        set(page_size 65536)
    endif()
    target_link_options(${library} PRIVATE
        "$<${condition}:${FRONTPANEL_LLD_OPTIONS};LINKER:-O2,-z,max-page-size=${page_size},-z,common-page-size=${page_size}>")
    if(NOT FRONTPANEL_LTO)
        return()
    endif()
    set(whole ${CMAKE_CURRENT_BINARY_DIR}/${library}_whole.o)
    add_custom_command(OUTPUT ${whole}
        COMMAND ${CMAKE_CXX_COMPILER} -r -flto=1 -flto-partition=one -flinker-output=nolto-rel
            -ffunction-sections -fdata-sections -o ${whole} $<TARGET_OBJECTS:${objects}>
        DEPENDS $<TARGET_OBJECTS:${objects}>
        COMMENT "Optimising ${library} as a whole"
        COMMAND_EXPAND_LISTS VERBATIM)
    set_source_files_properties(${whole} PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
    get_target_property(sources ${library} SOURCES)
    list(REMOVE_ITEM sources $<TARGET_OBJECTS:${objects}>)
    set_target_properties(${library} PROPERTIES SOURCES "${sources}")
    target_sources(${library} PRIVATE $<IF:${condition},${whole},$<TARGET_OBJECTS:${objects}>>)
endfunction()

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
    # A dynamic list binds all symbols that it does not name to the library. `-Bsymbolic` beside it would make LLVM's
    # linker write a flag by which the dynamic linker binds those of the list too.
    target_link_options(${library} PRIVATE
        $<${optimised}:LINKER:--gc-sections,--dynamic-list=${arg_PREEMPTIBLE},--hash-style=gnu>)
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
    # The library runs no code before `main` or at the end of the process, so the compiler's start files are left out: they
    # take four failing look-ups and three pages at start-up, 15 us. A variable with a destructor that runs at the end does
    # not link then: `__dso_handle` is missing.
    target_link_options(${library} PRIVATE $<${optimised}:-nostartfiles>)
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
    if(FRONTPANEL_PACK_RELOCATIONS AND FRONTPANEL_LLD_PACKS_RELOCATIONS)
        frontpanel_link_by_lld(${library} ${arg_OBJECTS} ${optimised})
    endif()
endfunction()
